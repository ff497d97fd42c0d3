#include "apps/kivtools/Pictures.h"

#include <charconv>
#include <cstdio>
#include <new>

#include "apps/kivtools/InputError.h"
#include "apps/kivtools/Shown.h"

namespace kivtools {
namespace {

/// The number that the whole text is in that base.
bool ReadNumber(std::string_view text, int base, std::uint32_t& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  return error == std::errc() && end == text.data() + text.size();
}

bool ReadSide(std::string_view text, std::int32_t& side) {
  constexpr std::uint32_t kMost = 32767;
  std::uint32_t number = 0;
  if (!ReadNumber(text, 10, number) || number < 1 || number > kMost) {
    return false;
  }
  side = static_cast<std::int32_t>(number);
  return true;
}

}  // namespace

std::uint32_t ReadColour(std::string_view text) {
  const std::string_view digits = text.substr(text.starts_with('#') ? 1 : 0);
  std::uint32_t rgb = 0;
  if (digits.size() != 6 || !ReadNumber(digits, 16, rgb)) {
    throw InputError(Say({"{0} is not a colour such as #0080FF", "{0} nu este o culoare ca #0080FF"}, Shown(text)));
  }
  return rgb >> 16U | (rgb & 0xFF00U) | (rgb & 0xFFU) << 16U;
}

std::string WriteColour(std::uint32_t colour) {
  char text[8];
  std::snprintf(text, sizeof text, "#%02X%02X%02X", static_cast<unsigned>(colour & 0xFFU),
                static_cast<unsigned>(colour >> 8U & 0xFFU), static_cast<unsigned>(colour >> 16U & 0xFFU));
  return text;
}

Picture BlackPicture(std::int32_t width, std::int32_t height) {
  Picture picture{width, height, {}};
  const std::uint64_t bytes = std::uint64_t{3} * static_cast<std::uint32_t>(width) * static_cast<std::uint32_t>(height);
  try {
    if (bytes > picture.pixels.max_size()) {
      throw std::bad_alloc();
    }
    picture.pixels.resize(static_cast<std::size_t>(bytes));
  } catch (const std::bad_alloc&) {
    throw InputError(Say({"a picture of {0}x{1} does not fit the memory", "o imagine de {0}x{1} nu încape în memorie"},
                         width, height));
  }
  return picture;
}

Picture ReadSize(std::string_view text) {
  std::int32_t width = 0;
  std::int32_t height = 0;
  const std::size_t cross = text.find('x');
  if (cross == std::string_view::npos || !ReadSide(text.substr(0, cross), width) ||
      !ReadSide(text.substr(cross + 1), height)) {
    throw InputError(Say({"{0} is not a size such as 640x480, each side 1 to 32767",
                          "{0} nu este o mărime ca 640x480, fiecare latură de la 1 la 32767"},
                         Shown(text)));
  }
  return BlackPicture(width, height);
}

}  // namespace kivtools
