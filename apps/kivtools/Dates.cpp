#include "apps/kivtools/Dates.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "apps/kivtools/InputError.h"
#include "kivtools/Ascii.h"

namespace kivtools {
namespace {

/// The numbers where the pattern has zeros ("0000-00-00"); none where anything else differs from it.
std::vector<int> Match(std::string_view text, std::string_view pattern) {
  const bool matches = std::ranges::equal(text, pattern, [](char given, char wanted) {
    return wanted == '0' ? kiv::ascii::IsDigit(given) : given == wanted;
  });
  std::vector<int> numbers;
  for (std::size_t at = 0; matches && at < text.size(); ++at) {
    if (pattern[at] != '0') {
      continue;
    }
    if (at == 0 || pattern[at - 1] != '0') {
      numbers.push_back(0);
    }
    numbers.back() = numbers.back() * 10 + (text[at] - '0');
  }
  return numbers;
}

/// False where the text has another form.
bool TakeDate(std::string_view text, Moment& moment) {
  if (const auto dashed = Match(text, "0000-00-00"); !dashed.empty()) {
    moment = {dashed[0], dashed[1], dashed[2]};
  } else if (const auto dotted = Match(text, "00.00.0000"); !dotted.empty()) {
    moment = {dotted[2], dotted[1], dotted[0]};
  } else {
    return false;
  }
  const std::chrono::year_month_day date{std::chrono::year(moment.year),
                                         std::chrono::month(static_cast<unsigned>(moment.month)),
                                         std::chrono::day(static_cast<unsigned>(moment.day))};
  if (moment.year < 1 || !date.ok()) {
    throw InputError("is not a date that the calendar has");
  }
  return true;
}

}  // namespace

Moment ReadDate(std::string_view text) {
  Moment moment;
  if (!TakeDate(text, moment)) {
    throw InputError("is not a date such as 2026-03-05 or 05.03.2026");
  }
  return moment;
}

Moment ReadMoment(std::string_view text) {
  Moment moment;
  const std::size_t mark = std::min(text.find('T'), text.size());
  const auto time = Match(text.substr(mark), "T00:00:00");
  if (!TakeDate(text.substr(0, mark), moment) || (mark < text.size() && time.empty())) {
    throw InputError("is not a date such as 2026-03-05 or 05.03.2026, with or without a time such as T14:07:09");
  }
  if (!time.empty()) {
    if (time[0] > 23 || time[1] > 59 || time[2] > 59) {
      throw InputError("has a time that no day has");
    }
    moment.hour = time[0];
    moment.minute = time[1];
    moment.second = time[2];
  }
  return moment;
}

}  // namespace kivtools
