#include "kivtools/WinUtil/DateText.h"

#include "core/DelimitedList.h"
#include "core/Numbers.h"

namespace kiv {
namespace {

constexpr std::array<TextView, 12> kMonths = {
    "ianuarie", "februarie", "martie",     "aprilie",   "mai",       "iunie",
    "iulie",    "august",    "septembrie", "octombrie", "noiembrie", "decembrie",
};
/// November is "noi" in this form, "nov" in NumeLunaScurt; hosts rely on both.
constexpr std::array<TextView, 12> kShortMonths = {
    "ian", "feb", "mar", "apr", "mai", "iun", "iul", "aug", "sep", "oct", "noi", "dec",
};
constexpr std::array<TextView, 7> kWeekdays = {
    "Duminica", "Luni", "Marti", "Miercuri", "Joi", "Vineri", "Sambata",
};

/// One moment taken apart, and the text that its parts are appended to.
class Composer {
 public:
  explicit Composer(DateTime moment) : parts_(moment.Decode()) {}

  Composer& Day() { return Number(parts_.day); }
  Composer& Day2() { return Padded(parts_.day, 2); }
  Composer& Month2() { return Padded(parts_.month, 2); }
  Composer& MonthName() { return Put(kMonths[MonthIndex()]); }
  Composer& ShortMonthName() { return Put(kShortMonths[MonthIndex()]); }
  Composer& Year() { return Number(parts_.year); }
  Composer& Year4() { return Padded(parts_.year, 4); }
  Composer& LastTwoOfYear() {
    Text year;
    AppendDecimal(year, parts_.year);
    year.resize(4, '?');  // at the end, where hosts expect it
    return Put(TextView(year).substr(2));
  }
  Composer& Weekday() { return Put(kWeekdays[static_cast<std::size_t>(parts_.dayOfWeek - 1)]); }
  Composer& WeekdayInBrackets() { return Put(" (").Weekday().Put(")"); }
  Composer& Hour() { return Number(parts_.hour); }
  Composer& Hour2() { return Padded(parts_.hour, 2); }
  Composer& Minute2() { return Padded(parts_.minute, 2); }
  Composer& Second2() { return Padded(parts_.second, 2); }

  Composer& Number(int value) {
    AppendDecimal(text_, value);
    return *this;
  }
  Composer& Put(TextView text) {
    text_.append(text);
    return *this;
  }

  [[nodiscard]] const DateTime::Parts& Parts() const { return parts_; }
  [[nodiscard]] bool Empty() const { return text_.empty(); }
  Text Done() { return std::move(text_); }

 private:
  Composer& Padded(int value, std::size_t width) {
    AppendPadded(text_, value, width);
    return *this;
  }
  [[nodiscard]] std::size_t MonthIndex() const { return static_cast<std::size_t>(parts_.month - 1); }

  DateTime::Parts parts_;
  Text text_;
};

}  // namespace

Text DateToRoText(DateTime date) {
  return Composer(date).Day().Put(" ").MonthName().Put(" ").Year().Done();
}

Text DateToRoText2(DateTime date) {
  return Composer(date).Day().Put(" ").MonthName().Done();
}

Text DateToRoText3(DateTime date) {
  return Composer(date).MonthName().Put(" ").Year().Done();
}

Text DateToRoText4(DateTime date) {
  return Composer(date).Day2().Put(" ").ShortMonthName().Put(" ").Year().Done();
}

Text DateToRoText5(DateTime date) {
  return Composer(date).Day().WeekdayInBrackets().Done();
}

Text DateToRoText6(DateTime date) {
  return Composer(date).Day().Put(" ").MonthName().WeekdayInBrackets().Done();
}

Text DateToRoText7(DateTime date) {
  return Composer(date).Day().Put(".").Month2().Put(".").Year().Done();
}

Text DateToRoCode(DateTime date) {
  return Composer(date).Day2().Put(".").Month2().Put(".").Year4().Done();
}

Text DateToRoTextScurt(DateTime date) {
  return Composer(date).Day2().Put("/").Month2().Done();
}

Text DateToRoTextScurtCuAn(DateTime date) {
  return Composer(date).Day2().Put("/").Month2().Put("/").LastTwoOfYear().Done();
}

Text DateToRoTextScurtCuAnPlusOra(DateTime date) {
  Composer time(date);
  time.Put(DateToRoTextScurtCuAn(date)).Put(" ");
  return time.Hour2().Put(":").Minute2().Put(":").Second2().Done();
}

Text NumeZiDinSaptamana(DateTime date) {
  return Composer(date).Weekday().Done();
}

Text TimeToStrRoFrumos(DateTime time) {
  return Composer(time).Hour().Put(":").Minute2().Put(":").Second2().Done();
}

Text TimeToStrRo(DateTime time) {
  Composer text(time);
  if (text.Parts().hour != 0) {
    text.Number(text.Parts().hour).Put("h");
  }
  if (text.Parts().minute != 0) {
    const TextView unit = text.Empty() ? "m" : "'";
    text.Put(text.Empty() ? "" : " ").Number(text.Parts().minute).Put(unit);
  }
  if (text.Parts().second != 0) {
    text.Put(text.Empty() ? "" : " ").Number(text.Parts().second).Put("''");
  }
  return text.Done();
}

Text TimeToStrRo2(DateTime time) {
  return Composer(time).Put("Ora ").Hour2().Put(" ").Minute2().Put(" minute ").Second2().Put(" sec").Done();
}

DateTime RoCodeToDate(TextView text) {
  const StringList items = SplitDelimited(text, '.');
  const auto item = [&items](std::size_t index) { return ToInt32(index < items.size() ? items[index] : Text()); };
  const std::int32_t day = item(0);
  const std::int32_t month = item(1);
  const std::int32_t year = item(2);
  return DateTime::Encode(year, month, day);
}

Text DateToRoText_WithCode(DateTime /*date*/, bool /*first*/, bool /*second*/, TCumScriuLuna /*month*/,
                           bool /*third*/) {
  return {};
}

}  // namespace kiv
