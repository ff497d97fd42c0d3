#include "apps/kivtools/Dates.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <optional>

#include "apps/kivtools/InputError.h"
#include "apps/kivtools/input/Blanks.h"
#include "kivtools/Ascii.h"

namespace kivtools {
namespace {

constexpr std::array<std::string_view, 12> kMonths = {"ianuarie",   "februarie", "martie",    "aprilie",
                                                      "mai",        "iunie",     "iulie",     "august",
                                                      "septembrie", "octombrie", "noiembrie", "decembrie"};
constexpr std::string_view kNovember = "nov";  // as short forms have it; no beginning of the name

constexpr bool IsLetter(char character) noexcept {
  return kiv::ascii::IsLower(kiv::ascii::ToLower(character));
}

/// Takes pieces off the front of a text. What is not there is said so, and nothing is taken.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : text_(text) {}

  /// A number of so many digits, all that there are.
  std::optional<int> Number(std::size_t fewest, std::size_t most) {
    const auto* const end = std::ranges::find_if_not(text_, kiv::ascii::IsDigit<char>);
    const auto count = static_cast<std::size_t>(end - text_.begin());
    if (count < fewest || count > most) {
      return std::nullopt;
    }
    int number = 0;
    for (const char digit : text_.substr(0, count)) {
      number = number * 10 + (digit - '0');
    }
    text_.remove_prefix(count);
    return number;
  }

  bool Skip(char wanted) {
    const bool there = text_.starts_with(wanted);
    text_.remove_prefix(there ? 1 : 0);
    return there;
  }

  bool SkipBlanks() {
    const std::size_t before = text_.size();
    while (const std::size_t length = BlankAtBegin(text_)) {
      text_.remove_prefix(length);
    }
    return text_.size() < before;
  }

  /// A month by its name or by three letters of it at least, with or without a dot.
  std::optional<int> Month() {
    const auto* const end = std::ranges::find_if_not(text_, IsLetter);
    const std::string_view name = text_.substr(0, static_cast<std::size_t>(end - text_.begin()));
    const auto begins = [name](std::string_view month) {
      return name.size() >= 3 && name.size() <= month.size() &&
             std::ranges::equal(name, month.substr(0, name.size()), {}, kiv::ascii::ToLower<char>);
    };
    const auto* const found = begins(kNovember) ? &kMonths[10] : std::ranges::find_if(kMonths, begins);
    if (found == kMonths.end()) {
      return std::nullopt;
    }
    text_.remove_prefix(name.size());
    Skip('.');
    return static_cast<int>(found - kMonths.begin()) + 1;
  }

  [[nodiscard]] bool AtEnd() const noexcept { return text_.empty(); }

 private:
  std::string_view text_;
};

// Each gives nothing where the text has another form.

std::optional<Moment> ReadDashed(std::string_view text) {
  Scanner scanner(text);
  Moment moment;
  const auto take = [&scanner](int& into, std::size_t digits) {
    const auto number = scanner.Number(digits, digits);
    into = number.value_or(0);
    return number.has_value();
  };
  const bool matches = take(moment.year, 4) && scanner.Skip('-') && take(moment.month, 2) && scanner.Skip('-') &&
                       take(moment.day, 2) && scanner.AtEnd();
  return matches ? std::optional(moment) : std::nullopt;
}

std::optional<Moment> ReadRomanian(std::string_view text) {
  Scanner scanner(text);
  const auto day = scanner.Number(1, 2);
  std::optional<int> month;
  bool separated = scanner.Skip('.');
  if (separated) {
    month = scanner.Number(1, 2);
    separated = scanner.Skip('.');
  } else if (scanner.SkipBlanks()) {
    month = scanner.Month();
    separated = scanner.SkipBlanks();
  }
  const auto year = separated ? scanner.Number(4, 4) : std::nullopt;
  if (!day || !month || !year || !scanner.AtEnd()) {
    return std::nullopt;
  }
  return Moment{*year, *month, *day};
}

/// False where the text has another form.
bool TakeDate(std::string_view text, Moment& moment) {
  const auto dashed = ReadDashed(text);
  const auto read = dashed ? dashed : ReadRomanian(text);
  if (!read) {
    return false;
  }
  moment = *read;
  const std::chrono::year_month_day date{std::chrono::year(moment.year),
                                         std::chrono::month(static_cast<unsigned>(moment.month)),
                                         std::chrono::day(static_cast<unsigned>(moment.day))};
  if (moment.year < 1 || !date.ok()) {
    throw InputError(Say({"is not a date that the calendar has", "nu este o dată din calendar"}));
  }
  return true;
}

/// Takes a time such as T14:07:09 off the text's end. Throws InputError for one that no day has.
bool TakeTime(std::string_view& text, Moment& moment) {
  constexpr std::size_t kLength = 8;
  if (text.size() <= kLength) {
    return false;
  }
  const std::string_view before = text.substr(0, text.size() - kLength);
  Scanner scanner(text.substr(before.size()));
  const auto hour = scanner.Number(2, 2);
  const auto minute = scanner.Skip(':') ? scanner.Number(2, 2) : std::nullopt;
  const auto second = scanner.Skip(':') ? scanner.Number(2, 2) : std::nullopt;
  const std::string_view date = before.ends_with('T') ? before.substr(0, before.size() - 1) : Trimmed(before);
  if (!hour || !minute || !second || date.size() == before.size()) {
    return false;
  }
  if (*hour > 23 || *minute > 59 || *second > 59) {
    throw InputError(Say({"has a time that no day has", "are o oră care nu există"}));
  }
  moment.hour = *hour;
  moment.minute = *minute;
  moment.second = *second;
  text = date;
  return true;
}

}  // namespace

Moment ReadDate(std::string_view text) {
  Moment moment;
  if (!TakeDate(Trimmed(text), moment)) {
    throw InputError(Say({"is not a date such as 2026-03-05, 05.03.2026 or 5 martie 2026",
                          "nu este o dată ca 2026-03-05, 05.03.2026 sau 5 martie 2026"}));
  }
  return moment;
}

Moment ReadMoment(std::string_view text) {
  text = Trimmed(text);
  Moment time;
  TakeTime(text, time);
  Moment moment;
  if (!TakeDate(text, moment)) {
    throw InputError(
        Say({"is not a date such as 2026-03-05, 05.03.2026 or 5 martie 2026, with or without a time such as T14:07:09",
             "nu este o dată ca 2026-03-05, 05.03.2026 sau 5 martie 2026, cu sau fără o oră ca T14:07:09"}));
  }
  moment.hour = time.hour;
  moment.minute = time.minute;
  moment.second = time.second;
  return moment;
}

}  // namespace kivtools
