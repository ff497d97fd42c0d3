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

/// Reads a date as people write it: 2024-03-05, 05.03.2024 or 5.3.2024, "5 martie 2024" with the month's Romanian name
/// in any case or its beginning ("5 mart. 2024"). Blanks around it are passed over. The one rule for all commands and
/// the invoice file. Throws InputError that says what is wrong, without the text.
Moment ReadDate(std::string_view text);

/// Reads a date that a time of day may come after, a T or a blank between them: 2024-03-05T14:07:09.
Moment ReadMoment(std::string_view text);

}  // namespace kivtools
