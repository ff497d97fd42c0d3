#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <limits>
#include <tuple>

#include "Expect.h"
#include "kivtools/WinUtil/DateArithmetic.h"
#include "kivtools/c/DateArithmetic.h"
#include "platform/Locale.h"

namespace kiv {
namespace {

constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
const DateTime kMarch = DateTime::Encode(2024, 3, 5, 14, 7, 9, 250);

TEST(IncMonth, KnownMoves) {
  const struct {
    DateTime date;
    std::int32_t months;
    DateTime result;
  } kCases[] = {
      {DateTime::Encode(2024, 1, 31, 10, 30), 1, DateTime::Encode(2024, 2, 29)},
      {DateTime::Encode(2024, 1, 31, 10, 30), 13, DateTime::Encode(2025, 2, 28)},
      {DateTime::Encode(2024, 1, 31, 10, 30), -1, DateTime::Encode(2023, 12, 31)},
      {DateTime::Encode(2024, 1, 31, 10, 30), 0,
       DateTime::Encode(2024, 1, 31)},  // the time of day is dropped on purpose
      {DateTime::Encode(2024, 2, 29), -12 * 124, DateTime::Encode(1900, 2, 28)},
      {DateTime::Encode(2024, 2, 29), -12 * 424, DateTime::Encode(1600, 2, 29)},
      {DateTime::Encode(1, 12, 31), -11, DateTime::Encode(1, 1, 31)},
  };
  for (const auto& [date, months, result] : kCases) {
    EXPECT_EQ(IncMonth(date, months), result) << months;
  }
  for (const std::int32_t months :
       {-24'289, 95'724, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()}) {
    EXPECT_THROW(std::ignore = IncMonth(kMarch, months), DateEncodingError) << months;
  }
}

TEST(IncMonth, AgreesWithTheStandardCalendar) {
  using namespace std::chrono;
  for (int day = 40'000; day < 46'000; day += 13) {
    for (int months = -50; months <= 50; ++months) {
      const year_month_day date{sys_days{1899y / December / 30} + days{day}};
      const year_month_day moved = date + std::chrono::months{months};
      const sys_days expected = moved.ok() ? sys_days{moved} : sys_days{moved.year() / moved.month() / last};
      ASSERT_EQ(IncMonth(DateTime(day + 0.75), months).Days(), (expected - sys_days{1899y / December / 30}).count());
    }
  }
}

TEST(SetDayOfDate, OneStepBackOnly) {
  for (int month = 1; month <= 12; ++month) {
    for (const int year : {2023, 2024}) {
      const int length = static_cast<int>(IncMonth(DateTime::Encode(year, month, 1), 1).Days() -
                                          DateTime::Encode(year, month, 1).Days());
      for (int day = -2; day <= 35; ++day) {
        const DateTime date = DateTime::Encode(year, month, 5, 12);
        if (day >= 1 && day <= length + 1) {
          ASSERT_EQ(SetDayOfDate(date, day), DateTime::Encode(year, month, std::min(day, length)));
        } else {
          ExpectError<Error>([&] { return SetDayOfDate(date, day); }, "Nu pot re-codifica data");
        }
      }
    }
  }
  EXPECT_THROW(std::ignore = SetDayOfDate(kMarch, std::numeric_limits<std::int32_t>::min()), Error);
}

TEST(CalcDurataTotala, EstimatesInFloatingPoint) {
  const double kHour = 1 / 24.0;
  const struct {
    std::int32_t total, done;
    double totalHours, remainingHours;
  } kCases[] = {
      {100, 25, 2, 1.5},     {100, 0, 0.5, 0}, {3, 2, 0.75, 0.25},  // no integer rounding
      {10, 20, 0.25, -0.25}, {0, 5, 0, -0.5},  {std::numeric_limits<std::int32_t>::max(), 1, 1073741823.5, 1073741823},
  };
  for (const auto& [total, done, totalHours, remainingHours] : kCases) {
    const DateTime start = DateTime::Encode(2024, 3, 5, 10);
    const DateTime now = DateTime::Encode(2024, 3, 5, 10, 30);
    DateTime totalTime;
    DateTime remainingTime;
    CalcDurataTotala(start, now, total, done, totalTime, remainingTime);
    EXPECT_NEAR(totalTime.Days(), totalHours * kHour, 1e-9 * (1 + totalHours));
    EXPECT_NEAR(remainingTime.Days(), remainingHours * kHour, 1e-9 * (1 + totalHours));
  }
}

TEST(CalcDurataTotala, TextsAreTimesOfDayInTheUsersFormat) {
  const auto userText = [](int hour, int minute, int second) {
    return platform::TimeInUserFormat(hour, minute, second).value_or("the format of this machine");
  };
  Text total;
  Text remaining;
  CalcDurataTotala(DateTime(45356), DateTime(45356.25), 100, 25, total, remaining);  // 24 and 18 hours
  EXPECT_EQ(total, userText(0, 0, 0));
  EXPECT_EQ(remaining, userText(18, 0, 0));
  CalcDurataTotala(DateTime(45356), DateTime(45356.25), 10, 20, total, remaining);  // 3 hours and -3 hours
  EXPECT_EQ(total, userText(3, 0, 0));
  EXPECT_EQ(remaining, userText(3, 0, 0)) << "the sign is not shown";
  CalcDurataTotala(DateTime(0), DateTime(1e9 + 0.5), 1, 0, total, remaining);
  EXPECT_EQ(total, userText(12, 0, 0)) << "a duration need not be a date";
  EXPECT_THROW(CalcDurataTotala(DateTime(0), DateTime(kNotANumber), 1, 1, total, remaining), DateEncodingError);
  EXPECT_EQ(total, userText(12, 0, 0));
}

TEST(TimeToStrDurataMS, IsTheTimeOfDay) {
  EXPECT_EQ(TimeToStrDurataMS(kMarch), "14:07:09:250");
  EXPECT_EQ(TimeToStrDurataMS(DateTime(0.005 / 86'400)), "00:00:00:005");
  EXPECT_EQ(TimeToStrDurataMS(DateTime(-1.25)), "06:00:00:000");
  EXPECT_EQ(TimeToStrDurataMS(DateTime(5e6 + 0.5)), "12:00:00:000");
  EXPECT_EQ(TimeToStrDurataMS(DateTime(1 - 1e-12)), "00:00:00:000") << "rounded into the next day";
  EXPECT_THROW(std::ignore = TimeToStrDurataMS(DateTime(kNotANumber)), DateEncodingError);
}

// Hosts hold these strings as keys: the seconds wrap at 65536, and the hours read back are minutes div 69, not 60.
TEST(SmartString, KnownStrings) {
  const struct {
    DateTime moment;
    TextView text;
    DateTime readBack;
  } kCases[] = {
      {DateTime::Encode(2024, 3, 5, 14, 7, 9), "2024:068:50829", DateTime::Encode(2024, 3, 5, 12, 7, 9)},
      {DateTime::Encode(2024, 3, 5, 23), "2024:068:17264", DateTime::Encode(2024, 3, 5, 4, 47, 44)},
      {DateTime::Encode(2024, 3, 5, 18, 12, 15), "2024:068:65535", DateTime::Encode(2024, 3, 5, 15, 12, 15)},
      {DateTime::Encode(2024, 3, 5, 18, 12, 16), "2024:068:00000", DateTime::Encode(2024, 3, 5)},
      {DateTime::Encode(2024, 3, 5, 1, 8, 59), "2024:068:04139", DateTime::Encode(2024, 3, 5, 0, 8, 59)},
      {DateTime::Encode(2024, 3, 5, 1, 9), "2024:068:04140", DateTime::Encode(2024, 3, 5, 1, 9)},
      {DateTime::Encode(2024, 3, 5, 0, 59, 59, 999), "2024:068:03599", DateTime::Encode(2024, 3, 5, 0, 59, 59)},
      {DateTime::Encode(1, 1, 1), "0001:014:00000", DateTime::Encode(1, 1, 1)},
      {DateTime::Encode(1899, 12, 29, 0, 30), "1899:389:01800", DateTime::Encode(1899, 12, 29, 0, 30)},
      {DateTime::Encode(9999, 12, 31), "9999:415:00000", DateTime::Encode(9999, 12, 31)},
  };
  for (const auto& [moment, text, readBack] : kCases) {
    EXPECT_EQ(DateTimeToSmartStrimg(moment), text);
    EXPECT_EQ(SmartStringToDateTime(text), readBack) << text;
  }
}

TEST(SmartString, EveryDateComesBack) {
  for (int day = -693'593; day <= 2'958'465; day += 5) {
    const double fraction = (day & 1023) / 1024.0;
    const DateTime moment(day < 0 ? day - fraction : day + fraction);
    ASSERT_EQ(std::trunc(SmartStringToDateTime(DateTimeToSmartStrimg(moment)).Days()), day);
  }
}

TEST(SmartString, FieldsOfOtherTexts) {
  const struct {
    TextView text;
    KivStatus status;
    DateTime moment;
  } kCases[] = {
      {"2024x068y00059zzz", KIV_OK, DateTime::Encode(2024, 3, 5, 0, 0, 59)},
      {"2024:068:7", KIV_OK, DateTime::Encode(2024, 3, 5, 0, 0, 7)},  // cut short, read as far as it goes
      {" +24: 68:  +60", KIV_OK, DateTime::Encode(24, 3, 5, 0, 1)},
      {"2024:068:65541", KIV_OK, DateTime::Encode(2024, 3, 5, 0, 0, 5)},  // kept in 16 bits
      {"2024:068:-0001", KIV_OK, DateTime::Encode(2024, 3, 5, 15, 12, 15)},
      {"2024:068:", -KIV_ERROR_CONVERSION, DateTime()},
      {"2024:068", -KIV_ERROR_CONVERSION, DateTime()},
      {"", -KIV_ERROR_CONVERSION, DateTime()},
      {"2024:06x:00000", -KIV_ERROR_CONVERSION, DateTime()},
      {"2024:000:x", -KIV_ERROR_CONVERSION, DateTime()},  // conversions come before the date check
      {"2024:013:00000", -KIV_ERROR_DATE, DateTime()},    // month 0
      {"2024:012:00000", -KIV_ERROR_DATE, DateTime()},    // day 0
      {"2023:379:00000", -KIV_ERROR_DATE, DateTime()},    // 29 February
      {"0000:068:00000", -KIV_ERROR_DATE, DateTime()},
      {"-001:068:00000", -KIV_ERROR_DATE, DateTime()},
  };
  for (const auto& [text, status, moment] : kCases) {
    double stored = 7;
    EXPECT_EQ(KivSmartStringToDateTime(text.data(), text.size(), &stored), status) << text;
    EXPECT_EQ(stored, status == KIV_OK ? moment.Days() : 7) << text;
  }
  ExpectError<ConversionError>([] { return SmartStringToDateTime("2024:068:1x"); }, "\"1x\" nu este un numar intreg");
}

}  // namespace
}  // namespace kiv
