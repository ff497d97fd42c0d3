#pragma once

#include <string_view>

namespace kivtools {

/// A date of the calendar and a time of day.
struct Moment {
  int year = 0;
  int month = 0;
  int day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
};

/// Reads a date written 2024-03-05 or 05.03.2024. Throws InputError that says what is wrong, without the text.
Moment ReadDate(std::string_view text);

/// Reads a date that a time of day may come after: 2024-03-05T14:07:09.
Moment ReadMoment(std::string_view text);

}  // namespace kivtools
