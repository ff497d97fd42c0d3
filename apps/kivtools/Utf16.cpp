#include "apps/kivtools/Utf16.h"

#include <array>

#include "apps/kivtools/InputError.h"
#include "apps/kivtools/Shown.h"
#include "kivtools/Utf8.h"

namespace kivtools {
namespace {

constexpr bool IsHigh(std::uint16_t unit) noexcept {
  return (unit & 0xFC00U) == 0xD800;
}

constexpr bool IsLow(std::uint16_t unit) noexcept {
  return (unit & 0xFC00U) == 0xDC00;
}

constexpr std::uint32_t CharacterOf(Utf16View units) noexcept {
  if (units.size() == 2) {
    return 0x10000U + ((units[0] & 0x3FFU) << 10U) + (units[1] & 0x3FFU);
  }
  return IsHigh(units[0]) || IsLow(units[0]) ? 0xFFFDU : units[0];
}

}  // namespace

Utf16View FirstCharacter(Utf16View wide) noexcept {
  return wide.first(wide.size() > 1 && IsHigh(wide[0]) && IsLow(wide[1]) ? 2 : 1);
}

Utf16 Utf16FromUtf8(std::string_view utf8) {
  Utf16 wide;
  wide.reserve(utf8.size());
  for (std::size_t at = 0; at < utf8.size();) {
    const kiv::utf8::Decoded decoded = kiv::utf8::DecodeAt(utf8, at);
    if (decoded.length == 0) {
      throw InputError(Say({"{0} is not UTF-8", "{0} nu este UTF-8"}, Shown(utf8.substr(at, 1))));
    }
    const auto character = static_cast<std::uint32_t>(decoded.character);
    if (character >= 0x10000) {
      wide.push_back(static_cast<std::uint16_t>(0xD7C0 + (character >> 10U)));
      wide.push_back(static_cast<std::uint16_t>(0xDC00 + (character & 0x3FFU)));
    } else {
      wide.push_back(static_cast<std::uint16_t>(character));
    }
    at += decoded.length;
  }
  return wide;
}

std::string Utf8FromUtf16(Utf16View wide) {
  std::string utf8;
  utf8.reserve(wide.size() + wide.size() / 4);
  while (!wide.empty()) {
    const Utf16View first = FirstCharacter(wide);
    wide = wide.subspan(first.size());
    const std::uint32_t character = CharacterOf(first);
    const unsigned extra = character < 0x80 ? 0 : character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
    constexpr std::array<unsigned, 4> kLeads = {0, 0xC0, 0xE0, 0xF0};
    utf8.push_back(static_cast<char>(kLeads[extra] | (character >> (6 * extra))));
    for (unsigned left = extra; left > 0; --left) {
      utf8.push_back(static_cast<char>(0x80U | ((character >> (6 * (left - 1))) & 0x3FU)));
    }
  }
  return utf8;
}

}  // namespace kivtools
