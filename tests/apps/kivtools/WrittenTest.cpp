#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <string>
#include <tuple>

#include "apps/kivtools/CodePages.h"
#include "apps/kivtools/Codes.h"
#include "apps/kivtools/Dates.h"
#include "apps/kivtools/InputError.h"
#include "apps/kivtools/Suggestion.h"
#include "kivtools/DateTime.h"
#include "kivtools/WinUtil/DateText.h"

namespace kivtools {
namespace {

TEST(WrittenDate, IsReadInEveryFormOfEveryDay) {
  using namespace std::chrono;
  for (sys_days day = sys_days(year(2023) / 12 / 1); day < sys_days(year(2025) / 2 / 1); day += days(1)) {
    const year_month_day date(day);
    const kiv::DateTime moment = kiv::DateTime::Encode(int{date.year()}, static_cast<int>(unsigned{date.month()}),
                                                       static_cast<int>(unsigned{date.day()}), 14, 7, 9);
    const std::string dashed = kiv::DateToRoCode(moment).substr(6) + "-" + kiv::DateToRoCode(moment).substr(3, 2) +
                               "-" + kiv::DateToRoCode(moment).substr(0, 2);
    for (const std::string& written : {kiv::DateToRoCode(moment), kiv::DateToRoText7(moment), kiv::DateToRoText(moment),
                                       kiv::DateToRoText4(moment), " " + dashed + " "}) {
      const Moment read = ReadDate(written);
      EXPECT_EQ(year(read.year) / read.month / read.day, date) << written;
      const Moment timed = ReadMoment(written + (written == dashed ? "T14:07:09" : "  14:07:09"));
      EXPECT_EQ(std::tuple(timed.day, timed.hour, timed.minute, timed.second), std::tuple(read.day, 14, 7, 9))
          << written;
    }
  }
}

TEST(WrittenDate, OfAnotherFormIsRefused) {
  EXPECT_EQ(ReadDate("5 SEPT. 2024").month, 9);
  EXPECT_EQ(ReadDate("5\u00A0Nov 2024").month, 11);
  for (const char* const bad : {"", "2024-3-05", "2024-03-005", "24-03-05", "5.3.24", "005.3.2024", "5.3.2024.",
                                "5 3 2024", "5 ma 2024", "5 marti", "5 martiee 2024", "5martie 2024", "5 martie2024",
                                "5..3.2024", "05/03/2024", "2024-03-05T14:07", "5 martie 2024 T14:07:09", "14:07:09"}) {
    EXPECT_THROW(ReadMoment(bad), InputError) << bad;
  }
  for (const char* const none : {"30 februarie 2024", "0.1.2024", "1.13.2024", "0000-01-01", "2024-03-05T24:00:00",
                                 "2024-03-05 00:60:00", "2024-03-05 00:00:60"}) {
    EXPECT_THROW(ReadMoment(none), InputError) << none;
  }
  EXPECT_THROW(ReadDate("2024-03-05T14:07:09"), InputError);
}

TEST(WrittenCode, LosesItsGapsAndItsRo) {
  const struct {
    const char* written;
    const char* withoutGaps;
    const char* withoutRo;
  } kCases[] = {{"123", "123", "123"},
                {" 1-800101-221144\u00A0", "1800101221144", "1800101221144"},
                {"RO 12 - 34", "RO1234", "1234"},
                {"ro-123", "ro123", "123"},
                {"-123-", "-123-", "-123-"},
                {"12--3", "12--3", "12--3"},
                {"1---2", "1---2", "1---2"},
                {"1\t2", "1\t2", "1\t2"},
                {"R O1", "RO1", "1"},
                {"", "", ""}};
  for (const auto& [written, withoutGaps, withoutRo] : kCases) {
    const std::string plain = WithoutGaps(written);
    EXPECT_EQ(plain, withoutGaps);
    EXPECT_EQ(WithoutRo(plain), withoutRo);
    EXPECT_EQ(WithoutGaps(plain), plain) << "nothing more to take";
  }
}

TEST(CodePage, HasItsUsualNames) {
  const struct {
    const char* name;
    std::int32_t page;
  } kCases[] = {{"65001", 65001},       {"UTF-8", 65001},  {"utf8", 65001},     {"Windows-1250", 1250},
                {"cp852", 852},         {"IBM 852", 852},  {"win1250", 1250},   {"iso-8859-2", 28592},
                {"ISO_8859-16", 28606}, {"latin2", 28592}, {"us-ascii", 20127}, {"cp65001", 65001}};
  for (const auto& [name, page] : kCases) {
    EXPECT_EQ(ReadCodePage(name), page) << name;
  }
  for (const char* const bad : {"", "utf", "utf-9", "cp", "cp0", "cp65536", "cp999999999999", "windows-1250x",
                                "iso-8859-0", "iso-8859-17", "65536", "-1", "latin 3"}) {
    EXPECT_THROW(ReadCodePage(bad), InputError) << bad;
  }
}

TEST(Suggestion, IsTheNearestNameThatIsNearEnough) {
  constexpr std::array<std::string_view, 5> kNames = {"check", "cnp", "compare", "copy", "words"};
  const struct {
    const char* given;
    const char* meant;
  } kCases[] = {{"wrods", "words"},  {"owrds", "words"},    {"word", "words"},
                {"wordss", "words"}, {"cmpare", "compare"}, {"chekc", "check"},
                {"cpn", "cnp"},      {"xyz", ""},           {"", ""},
                {"w", ""},           {"wodrsx", "words"},   {"coppy", "copy"},
                {"wrosd", ""}};
  for (const auto& [given, meant] : kCases) {
    EXPECT_EQ(Nearest(given, kNames), meant) << given;
  }
  EXPECT_EQ(DidYouMean("wrods", kNames, "--"), "; did you mean --words?");
  EXPECT_EQ(DidYouMean("xyz", kNames), "");
}

}  // namespace
}  // namespace kivtools
