/// @file
/// The one error family. Every failure of the library is a kiv::Error or one of the kinds below it.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include "kivtools/Export.h"

namespace kiv {

/// The general error. `what()` is one Romanian message as zero-terminated Windows-1250 bytes.
///
///     try { InLitere(-5); }
///     catch (const Error& error) { error.what(); }   // "Numarul -5 nu se afla in intervalul 0..999"
class KIV_API Error : public std::runtime_error {
 public:
  explicit Error(const std::string& message);
  ~Error() override;
};

/// A text is not the number, or not the encoding, that it has to be.
/// Example: `RoCodeToDate("x.02.2024")` throws it with "\"x\" nu este un numar intreg".
class KIV_API ConversionError : public Error {
 public:
  using Error::Error;
  ~ConversionError() override;
};

/// Year, month, day or time of day that the calendar does not have, or a date outside the years 1 to 9999.
/// Example: `DateTime::Encode(2024, 2, 31)` throws it.
class KIV_API DateEncodingError : public Error {
 public:
  using Error::Error;
  ~DateEncodingError() override;
};

/// An integer division whose divisor is zero. Example: a scale ratio of "1:0".
class KIV_API DivisionByZero : public Error {
 public:
  using Error::Error;
  ~DivisionByZero() override;
};

/// An object of another class than the operation works on. Example: a layout event sent by a foreign panel.
class KIV_API InvalidCast : public Error {
 public:
  using Error::Error;
  ~InvalidCast() override;
};

/// A list index below zero or past the last item. Example: item 3 of a list of three.
class KIV_API ListIndexError : public Error {
 public:
  using Error::Error;
  ~ListIndexError() override;
};

/// A broken internal invariant, with the source unit and the line that noticed it.
/// Example: `AssertionFailure("UTreeAVL2", 266)` has the message "Assertion failure" and `Line()` 266.
class KIV_API AssertionFailure : public Error {
 public:
  AssertionFailure(std::string_view unit, std::int32_t line);
  ~AssertionFailure() override;

  /// The unit's name as the package table spells it.
  [[nodiscard]] const std::string& Unit() const noexcept { return unit_; }
  /// The line within the unit, from 1.
  [[nodiscard]] std::int32_t Line() const noexcept { return line_; }

 private:
  std::string unit_;
  std::int32_t line_;
};

/// A failure of the operating system: its code (`errno` on POSIX, `GetLastError()` on Windows) and its own text.
/// Example: opening a missing file gives `Code()` 2 on both systems.
class KIV_API OsError : public Error {
 public:
  OsError(std::int32_t code, const std::string& message);
  ~OsError() override;

  /// The system's error number.
  [[nodiscard]] std::int32_t Code() const noexcept { return code_; }

 private:
  std::int32_t code_;
};

}  // namespace kiv
