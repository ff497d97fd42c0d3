#include <gtest/gtest.h>

#include <limits>
#include <tuple>

#include "Expect.h"
#include "kivtools/WinUtil/DateText.h"

namespace kiv {
namespace {

TEST(DateText, EveryForm) {
  const DateTime march = DateTime::Encode(2024, 3, 5, 14, 7, 9);
  const DateTime november = DateTime::Encode(2024, 11, 9, 9, 5, 3, 499);
  const DateTime january = DateTime::Encode(2025, 1, 1);
  const DateTime year99 = DateTime::Encode(99, 12, 30, 0, 7, 0);
  const DateTime year123 = DateTime::Encode(123, 12, 30, 14, 0, 9);
  const struct {
    Text (*form)(DateTime);
    DateTime moment;
    TextView text;
  } kCases[] = {
      {DateToRoText, march, "5 martie 2024"},
      {DateToRoText, DateTime(0), "30 decembrie 1899"},
      {DateToRoText, year99, "30 decembrie 99"},
      {DateToRoText2, march, "5 martie"},
      {DateToRoText3, march, "martie 2024"},
      {DateToRoText4, march, "05 mar 2024"},
      {DateToRoText4, november, "09 noi 2024"},
      {DateToRoText5, march, "5 (Marti)"},
      {DateToRoText6, november, "9 noiembrie (Sambata)"},
      {DateToRoText7, january, "1.01.2025"},
      {DateToRoCode, january, "01.01.2025"},
      {DateToRoCode, year99, "30.12.0099"},
      {DateToRoTextScurt, january, "01/01"},
      {DateToRoTextScurtCuAn, march, "05/03/24"},
      {DateToRoTextScurtCuAn, DateTime::Encode(5, 3, 5), "05/03/??"},
      {DateToRoTextScurtCuAn, year99, "30/12/??"},
      {DateToRoTextScurtCuAn, year123, "30/12/3?"},
      {DateToRoTextScurtCuAnPlusOra, march, "05/03/24 14:07:09"},
      {DateToRoTextScurtCuAnPlusOra, DateTime(0), "30/12/99 00:00:00"},
      {NumeZiDinSaptamana, march, "Marti"},
      {TimeToStrRoFrumos, november, "9:05:03"},
      {TimeToStrRo2, november, "Ora 09 05 minute 03 sec"},
      {TimeToStrRo, march, "14h 7' 9''"},
      {TimeToStrRo, year99, "7m"},
      {TimeToStrRo, year123, "14h 9''"},
      {TimeToStrRo, DateTime::Encode(2024, 1, 1, 0, 7, 9), "7m 9''"},
      {TimeToStrRo, DateTime::Encode(2024, 1, 1, 0, 0, 9), "9''"},
      {TimeToStrRo, january, ""},
  };
  for (const auto& [form, moment, text] : kCases) {
    EXPECT_EQ(form(moment), text);
  }
  EXPECT_EQ(DateToRoText_WithCode(march, true, false, scriu_nume_luna, true), "");
  EXPECT_EQ(
      DateToRoText_WithCode(DateTime(std::numeric_limits<double>::quiet_NaN()), true, true, scriu_1_cifre_luna, true),
      "");
}

TEST(DateText, WeekdaysAndMonthsInOrder) {
  const TextView kWeekdays[] = {"Duminica", "Luni", "Marti", "Miercuri", "Joi", "Vineri", "Sambata"};
  const TextView kMonths[] = {"ianuarie", "februarie", "martie",     "aprilie",   "mai",       "iunie",
                              "iulie",    "august",    "septembrie", "octombrie", "noiembrie", "decembrie"};
  const TextView kShort = "ianfebmaraprmaiiuniulaugsepoctnoidec";
  for (int day = 0; day < 7; ++day) {
    EXPECT_EQ(NumeZiDinSaptamana(DateTime::Encode(2024, 11, 10 + day)), kWeekdays[day]);  // the 10th is a Sunday
  }
  for (int month = 1; month <= 12; ++month) {
    const auto index = static_cast<std::size_t>(month - 1);
    EXPECT_EQ(DateToRoText3(DateTime::Encode(2024, month, 1)), Text(kMonths[index]) + " 2024");
    EXPECT_EQ(DateToRoText4(DateTime::Encode(2024, month, 1)), "01 " + Text(kShort.substr(index * 3, 3)) + " 2024");
  }
}

TEST(DateText, ReadsItsCode) {
  const struct {
    TextView text;
    int year, month, day;
  } kCases[] = {
      {"05.03.2024", 2024, 3, 5},
      {"5.3.24", 24, 3, 5},
      {" 5 . 3 . 2024 ", 2024, 3, 5},
      {"5 3 2024", 2024, 3, 5},
      {"\"5\".\"3\".\"2024\"", 2024, 3, 5},
      {"5.3.2024.7.x", 2024, 3, 5},
      {"+5.3.2024", 2024, 3, 5},
      {"29.02.2024\r\n", 2024, 2, 29},
  };
  for (const auto& [text, year, month, day] : kCases) {
    EXPECT_EQ(RoCodeToDate(text), DateTime::Encode(year, month, day)) << text;
  }
  for (int day = -200'000; day < 100'000; day += 17) {
    const DateTime date(day);
    EXPECT_EQ(RoCodeToDate(DateToRoCode(date)), date);
  }
}

TEST(DateText, RefusesCodesThatAreNoDate) {
  for (const TextView text : {"31.02.2024", "0.1.2024", "1.13.2024", "1.1.10000", "1.1.0", "-1.1.2024"}) {
    EXPECT_THROW(std::ignore = RoCodeToDate(text), DateEncodingError) << text;
  }
  const struct {
    TextView text;
    TextView item;
  } kCases[] = {
      {"", ""},
      {"5", ""},
      {"5.3", ""},
      {"5.3.", ""},
      {"5..2024", ""},
      {"5.x.2024", "x"},
      {"5,3,2024", "5,3,2024"},
      {"5.3.99999999999", "99999999999"},
      {"5.\"3 \".2024", "3 "},
      {"5.3.\"20\"\"24\"", "20\"24"},
      {"+-5.3.2024", "+-5"},
  };
  for (const auto& [text, item] : kCases) {
    ExpectError<ConversionError>([text = text] { return RoCodeToDate(text); },
                                 "\"" + Text(item) + "\" nu este un numar intreg");
  }
}

}  // namespace
}  // namespace kiv
