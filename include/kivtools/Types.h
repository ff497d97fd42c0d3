/// @file
/// The types that every unit shares. Including this header is enough to call any operation of the library.
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <variant>

#include "kivtools/Currency.h"
#include "kivtools/DateTime.h"
#include "kivtools/Errors.h"
#include "kivtools/Export.h"
#include "kivtools/Text.h"

namespace kiv {

/// A colour: 0x00BBGGRR, red in the lowest byte. A top byte other than 0 names a colour of the system.
using Colour = std::uint32_t;
/// A handle of the operating system (module, process, device context, window).
using Handle = std::uintptr_t;

/// A 16-byte identifier, in the parts of its usual text form.
/// Example: {01234567-89AB-CDEF-0123-456789ABCDEF} is `{0x01234567, 0x89AB, 0xCDEF, {0x01, 0x23, 0x45, ...}}`.
struct Guid {
  std::uint32_t data1 = 0;
  std::uint16_t data2 = 0;
  std::uint16_t data3 = 0;
  std::array<std::uint8_t, 8> data4{};

  /// In the order of the text form. Example: an identifier equals itself only.
  friend constexpr auto operator<=>(const Guid&, const Guid&) = default;
};

/// The absent value of a Variant.
struct Null {
  friend constexpr bool operator==(Null, Null) = default;
};

/// A value of one of the kinds that host applications pass around loosely typed.
using Variant = std::variant<Null, bool, std::int32_t, std::int64_t, double, Currency, DateTime, Text>;

}  // namespace kiv
