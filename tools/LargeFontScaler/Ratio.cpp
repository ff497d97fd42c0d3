#include "tools/LargeFontScaler/Ratio.h"

#include <array>
#include <charconv>
#include <optional>

#include "core/Numbers.h"
#include "core/Wrapping.h"
#include "kivtools/Host.h"
#include "platform/Files.h"

namespace kiv::large_fonts {
namespace {

using platform::File;
using platform::OpenMode;

constexpr TextView kNewFile = "1:1\r\n";

std::int32_t Part(TextView digits) {
  constexpr std::int32_t kNoNumber = 8;
  std::int32_t value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  return error == std::errc{} && end == digits.data() + digits.size() ? value : kNoNumber;
}

bool IsFile(const std::filesystem::path& path) noexcept {
  platform::EntryInfo info;
  const platform::SystemStatus status =
      platform::Query(platform::Folder::Working(), path, platform::Links::Followed, info);
  return !status.Failed() && info.kind == platform::EntryKind::File;
}

/// Where this fails half-way there is an empty file, which says the same.
void MakeFile(const std::filesystem::path& path) noexcept {
  File file;
  if (!file.Open(path, OpenMode::CreateNew).Failed()) {
    const std::array<std::uint8_t, kNewFile.size()> bytes = {'1', ':', '1', '\r', '\n'};
    [[maybe_unused]] const platform::SystemStatus written = file.Write(bytes);
  }
}

/// The first line; of one that never ends, as much as could matter. Nothing for an empty file.
std::optional<Text> FirstLine(const std::filesystem::path& path) {
  constexpr TextView kOperation = "Nu pot citi raportul de marire";
  constexpr std::size_t kLongest = 4'096;
  File file;
  file.Open(path, OpenMode::ReadFile).OrThrow(kOperation, path);
  std::array<std::uint8_t, kLongest> bytes{};
  std::size_t count = 0;
  file.ReadAt(0, bytes, count).OrThrow(kOperation, path);
  if (count == 0) {
    return std::nullopt;
  }
  const Text start(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count));
  return start.substr(0, start.find_first_of("\r\n"));
}

}  // namespace

Ratio RatioFromLine(TextView line) {
  Text kept;
  for (const char character : line) {
    if (IsDigit(character) || character == ':') {
      kept.push_back(character);
    }
  }
  const std::size_t colon = kept.find(':');
  if (colon == Text::npos) {
    return {Part(kept), Part(kept)};
  }
  return {Part(TextView(kept).substr(0, colon)), Part(TextView(kept).substr(colon + 1))};
}

Ratio RatioFromFont(std::int32_t height) {
  constexpr std::int32_t kLineHeight = 8;
  constexpr std::int32_t kLetterHeight = 11;
  return height < 0 ? Ratio{Wrapped(-std::int64_t{height}), kLetterHeight} : Ratio{height, kLineHeight};
}

Ratio ReadRatio(const std::filesystem::path& folder) {
  const std::filesystem::path path = folder / "LargeFonts.txt";
  // Without a folder the name would be one in the working folder, whatever that is.
  bool exists = !folder.empty() && IsFile(path);
  if (!exists && !folder.empty()) {
    MakeFile(path);
    exists = IsFile(path);
  }
  return exists ? RatioFromLine(FirstLine(path).value_or(Text(kNewFile)))
                : RatioFromFont(host::Current().GetScreen().MessageFontHeight());
}

}  // namespace kiv::large_fonts
