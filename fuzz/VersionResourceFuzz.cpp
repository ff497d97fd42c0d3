// Any bytes read as a version resource or as none. What was found stays the same when the file grows at its end; no
// more is read than promised; a text never holds a zero.
#include <cstring>
#include <vector>

#include "fuzz/Property.h"
#include "tests/CEVersionInfo/MemorySource.h"
#include "tools/CEVersionInfo/ExecutableImage.h"
#include "tools/CEVersionInfo/VersionResource.h"
#include "tools/CEVersionInfo/VersionTexts.h"

namespace {

using namespace kiv::version;

bool Same(const VersionTexts& left, const VersionTexts& right) {
  return left.strings == right.strings && left.parts == right.parts &&
         std::memcmp(&left.fixedInfo, &right.fixedInfo, sizeof left.fixedInfo) == 0;
}

VersionTexts Read(std::span<const std::uint8_t> bytes, std::uint16_t language) {
  MemorySource source(bytes);
  VersionTexts texts = ReadVersionTexts(source, language);
  REQUIRE(source.read <= kMostBytesRead);
  return texts;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::span<const std::uint8_t> image(bytes, size);
  const std::uint16_t language = size > 0 ? bytes[size - 1] : std::uint16_t{0};
  const VersionTexts texts = Read(image, language);
  const bool available = texts.strings[0] != "<info not available>";
  for (const kiv::Text& text : texts.strings) {
    REQUIRE(text.find('\0') == kiv::Text::npos);
    REQUIRE(available || text == "<info not available>");
  }
  if (available) {
    std::vector<std::uint8_t> longer(image.begin(), image.end());
    longer.resize(size + 5000, 0xAA);
    REQUIRE(Same(Read(longer, language), texts));
  } else {
    const kiv::FixedFileInfo none{};
    REQUIRE(std::memcmp(&texts.fixedInfo, &none, sizeof none) == 0);
  }

  // The whole input as the resource itself: deeper than what the headers let through.
  const auto resource = VersionResource::Parse({image.begin(), image.end()});
  if (resource) {
    REQUIRE(resource->QueryText("\\StringFileInfo\\").find('\0') == kiv::Text::npos);
    REQUIRE(resource->Query("\\VarFileInfo\\Translation").size() ==
            resource->Query("\\\\varfileinfo\\\\\\TRANSLATION\\").size());
    REQUIRE(resource->FirstTableText("FileVersion").size() * 2 <= size);
  }
  return 0;
}
