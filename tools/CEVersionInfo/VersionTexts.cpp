#include "tools/CEVersionInfo/VersionTexts.h"

#include <algorithm>
#include <cstdio>

#include "platform/Files.h"
#include "platform/System.h"
#include "tools/CEVersionInfo/ExecutableImage.h"
#include "tools/CEVersionInfo/VersionResource.h"

namespace kiv::version {
namespace {

constexpr TextView kNotAvailable = "<info not available>";

/// A file as it is when it is opened; what cannot be read is as if the file ended there.
class FileBytes : public ByteSource {
 public:
  /// Whether there is a regular file that can be read.
  bool Open(const std::filesystem::path& path) {
    platform::EntryInfo info;
    if (file_.Open(path, platform::OpenMode::ReadFile).Failed() || file_.Query(info).Failed()) {
      return false;
    }
    size_ = info.size;
    return true;
  }

  [[nodiscard]] std::uint64_t Size() const noexcept override { return size_; }
  std::size_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> buffer) noexcept override {
    std::size_t count = 0;
    static_cast<void>(file_.ReadAt(offset, buffer, count));
    return count;
  }

 private:
  platform::File file_;
  std::uint64_t size_ = 0;
};

/// The ten strings in the order of InfoStr.
std::array<Text, 10> ReadStrings(const VersionResource& resource) {
  const auto translation = resource.Query("\\\\VarFileInfo\\\\Translation");
  std::array<char, 40> table{};
  if (translation.size() >= 4) {
    std::snprintf(table.data(), table.size(), "\\\\StringFileInfo\\\\%.4x%.4x\\\\", unsigned{Number16(translation)},
                  unsigned{Number16(translation.subspan(2))});
  }
  std::array<Text, 10> strings;
  for (std::size_t i = 0; i < strings.size(); ++i) {
    // After Finalize() the exported names are gone, but reading a file needs no start-up.
    const Text key(InfoStr[i].empty() ? kKeyNames[i] : TextView(InfoStr[i]));
    strings[i] = table[0] != '\0' ? resource.QueryText(table.data() + key) : resource.FirstTableText(key);
  }
  return strings;
}

FixedFileInfo ReadFixedInfo(const VersionResource& resource) {
  std::array<std::uint32_t, 13> numbers{};
  std::array<std::uint8_t, sizeof numbers> bytes{};
  const auto value = resource.Query("\\");
  std::copy_n(value.begin(), std::min(value.size(), bytes.size()), bytes.begin());
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    numbers[i] = Number32(std::span(bytes).subspan(4 * i));
  }
  const auto& n = numbers;
  return {n[0], n[1], n[2], n[3], n[4], n[5], n[6], n[7], n[8], n[9], n[10], n[11], n[12]};
}

/// The text before the first separator, which is taken off `rest` with it; where there is none, the empty Text, and
/// `rest` stays whole.
Text TakePart(TextView& rest, char separator) {
  const std::size_t at = rest.find(separator);
  if (at == TextView::npos) {
    return {};
  }
  const TextView part = rest.substr(0, at);
  rest.remove_prefix(at + 1);
  return Text(part);
}

template <std::size_t Count>
std::array<Text, Count> NotAvailable() {
  std::array<Text, Count> texts;
  texts.fill(Text(kNotAvailable));
  return texts;
}

/// The four parts of a file version.
std::array<Text, 4> SplitVersion(TextView fileVersion) {
  const char separator = fileVersion.find('.') != TextView::npos ? '.' : ',';
  if (fileVersion.find(separator) == TextView::npos) {
    return NotAvailable<4>();
  }
  std::array<Text, 4> parts;
  for (std::size_t i = 0; i < 3; ++i) {
    parts[i] = TakePart(fileVersion, separator);
  }
  parts[3] = fileVersion;
  return parts;
}

}  // namespace

VersionTexts ReadVersionTexts(ByteSource& source, std::uint16_t userLanguage) {
  auto bytes = FindVersionResource(source, userLanguage);
  const auto resource = bytes ? VersionResource::Parse(std::move(*bytes)) : std::nullopt;
  if (!resource) {
    return {NotAvailable<10>(), NotAvailable<4>(), {}};
  }
  VersionTexts texts{ReadStrings(*resource), {}, ReadFixedInfo(*resource)};
  texts.parts = SplitVersion(texts.strings[kFileVersion]);
  return texts;
}

VersionTexts ReadVersionTexts(const std::filesystem::path& path) {
  FileBytes bytes;
  if (!bytes.Open(path)) {
    return {NotAvailable<10>(), NotAvailable<4>(), {}};
  }
  return ReadVersionTexts(bytes, platform::UserLanguage());
}

}  // namespace kiv::version
