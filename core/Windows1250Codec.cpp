#include "core/Windows1250Codec.h"

#include <array>
#include <cstddef>
#include <cstdint>

#include "core/Windows1250BestFit.h"

namespace kiv::windows1250 {
namespace {

constexpr std::size_t kBlockSize = 256;

/// For each high byte of a unit the number of its block: block 0 is all "?", the others hold at least one letter.
struct BlockNumbers {
  std::array<std::uint8_t, 256> ofHighByte{};
  std::size_t count = 1;
};

constexpr BlockNumbers NumberBlocks() {
  BlockNumbers numbers;
  const auto add = [&numbers](char16_t unit) {
    std::uint8_t& number = numbers.ofHighByte[unit / kBlockSize];
    if (number == 0) {
      number = static_cast<std::uint8_t>(numbers.count++);
    }
  };
  add(0);
  for (const char16_t unit : kUpperHalf) {
    add(unit);
  }
  for (const detail::Pair& pair : kBestFit) {
    add(pair.character);
  }
  return numbers;
}

constexpr BlockNumbers kBlocks = NumberBlocks();

constexpr std::array<std::uint8_t, kBlocks.count * kBlockSize> FillBlocks() {
  std::array<std::uint8_t, kBlocks.count * kBlockSize> bytes{};
  bytes.fill('?');
  const auto set = [&bytes](char16_t unit, std::size_t byte) {
    bytes[kBlocks.ofHighByte[unit / kBlockSize] * kBlockSize + unit % kBlockSize] = static_cast<std::uint8_t>(byte);
  };
  for (const detail::Pair& pair : kBestFit) {
    set(pair.character, pair.byte);
  }
  for (std::size_t byte = 0; byte < 256; ++byte) {
    set(ToUnicode(static_cast<unsigned char>(byte)), byte);
  }
  return bytes;
}

constexpr auto kNearest = FillBlocks();

}  // namespace

unsigned char NearestByte(char16_t unit) noexcept {
  return kNearest[kBlocks.ofHighByte[unit / kBlockSize] * kBlockSize + unit % kBlockSize];
}

WideText ToWide(TextView text) {
  WideText wide(text.size(), u'\0');
  for (std::size_t i = 0; i < text.size(); ++i) {
    wide[i] = ToUnicode(static_cast<unsigned char>(text[i]));
  }
  return wide;
}

Text FromWide(std::u16string_view wide) {
  Text text(wide.size(), '\0');
  for (std::size_t i = 0; i < wide.size(); ++i) {
    text[i] = static_cast<char>(NearestByte(wide[i]));
  }
  return text;
}

}  // namespace kiv::windows1250
