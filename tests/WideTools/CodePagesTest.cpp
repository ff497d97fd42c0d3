#include <gmock/gmock.h>

#include <array>

#include "core/Units.h"
#include "core/Windows1250BestFit.h"
#include "kivtools/WideTools.h"
#include "platform/CodePages.h"

namespace kiv {
namespace {

using namespace literals;

// Held against the system's own conversion on Windows and against the library's on POSIX: the two are equal.
TEST(CodePages, Windows1250MapsEveryByteAndEveryUnit) {
  for (int byte = 1; byte < 256; ++byte) {
    const Text text(1, static_cast<char>(byte));
    const WideText wide(1, windows1250::ToUnicode(static_cast<unsigned char>(byte)));
    ASSERT_EQ(StringToWideString(text, 1250), wide) << byte;
    ASSERT_EQ(WideStringToString(wide, 1250), text) << byte;
  }
  int exact = 1;  // the zero, which ends every result
  int bestFit = 0;
  const auto* look = windows1250::kBestFit.begin();
  for (int number = 1; number < 0x10000; ++number) {
    const auto unit = static_cast<char16_t>(number);
    unsigned char expected = '?';
    if (const auto byte = windows1250::FromUnicode(unit)) {
      expected = *byte;
      ++exact;
    } else if (look != windows1250::kBestFit.end() && look->character == unit) {
      expected = (look++)->byte;
      ++bestFit;
    }
    ASSERT_EQ(WideStringToString({&unit, 1}, 1250), Text(1, static_cast<char>(expected))) << number;
  }
  EXPECT_EQ(exact, 256);
  EXPECT_EQ(bestFit, 435);
}

TEST(CodePages, ConvertsTextsInNumberedCodePages) {
  const struct {
    std::int32_t codePage;
    TextView text;
    std::u16string_view wide;
  } kCases[] = {
      {1250, "\xAA\xFE \x80\x81", u"Şţ €\u0081"},
      {1251, "\xC1\x98", u"Б\u0098"},
      {1252, "na\xEFve \x81\x8D", u"naïve \u0081\u008D"},
      {852, "\xC7\xEE", u"ăţ"},
      {28592, "\xBA\xFE", u"şţ"},
      {932, "\x83\x4A", u"カ"},
      {20127, "Suma", u"Suma"},
      {65000, "Suma", u"Suma"},
      {65001, "leu\xC5\xA3", u"leuţ"},
      {65001, "", u""},
  };
  for (const auto& [codePage, text, wide] : kCases) {
    EXPECT_EQ(StringToWideString(text, codePage), wide) << codePage;
    EXPECT_EQ(WideStringToString(wide, codePage), text) << codePage;
  }
}

TEST(CodePages, ReplacesWhatTheCodePageLacks) {
  const struct {
    std::int32_t codePage;
    std::u16string_view wide;
    TextView text;
  } kCases[] = {
      {1250, u"șțȘȚ", "????"},             // comma below: the conversion itself knows the cedilla forms only
      {1250, u"À\uFF21\uFF1F", "AA?"},     // look-alikes
      {1250, u"\U0001F600\xDC00", "???"},  // each half of a pair by itself
      {1252, u"ж\U0001F600x", "???x"},
      {20127, u"lei", "lei"},
  };
  for (const auto& [codePage, wide, text] : kCases) {
    EXPECT_EQ(WideStringToString(wide, codePage), text) << codePage;
  }
}

TEST(CodePages, ResultsEndAtTheFirstZeroAndNeverOutgrowTheirRoom) {
  EXPECT_EQ(StringToWideString(TextView("a\0b", 3), 1250), u"a");
  EXPECT_EQ(WideStringToString(std::u16string_view(u"a\0b", 3), 1250), "a");
  EXPECT_EQ(StringToWideString(TextView("\0b", 2), 65001), u"");
  const struct {
    std::u16string_view wide;
    TextView utf8;  // room for one byte more than there are units
  } kCases[] = {{u"leuţ", "leu\xC5\xA3"}, {u"ţş", ""}, {u"€", ""}, {u"\xD800", ""}, {u"😀", ""}};
  for (const auto& [wide, utf8] : kCases) {
    EXPECT_EQ(WideStringToString(wide, 65001), utf8) << testing::PrintToString(wide);
  }
}

TEST(CodePages, NumbersThatNameNoCodePageGiveNothing) {
  for (const std::int32_t codePage : {-1, -1250, 4, 99, 1200, 1249, 12000, 66786, INT32_MIN, INT32_MAX}) {
    EXPECT_EQ(StringToWideString("lei", codePage), u"") << codePage;
    EXPECT_EQ(WideStringToString(u"lei", codePage), "") << codePage;
  }
  for (const std::int32_t own : {0, 1, 3}) {  // the system's own code pages, whichever they are
    EXPECT_EQ(StringToWideString("lei", own), u"lei") << own;
    EXPECT_EQ(WideStringToString(u"lei", own), "lei") << own;
  }
}

TEST(CodePages, MalformedUtf8BecomesReplacementCharacters) {
  const struct {
    TextView utf8;
    std::u16string_view wide;
  } kCases[] = {
      {"\xFF"
       "a",
       u"\uFFFDa"},
      {"\xC5", u"\uFFFD"},
      {"a\xE2\x82", u"a\uFFFD"},
      {"\xE2\x82"
       "a",
       u"\uFFFDa"},
      {"\xF0\x9F\x98\x80", u"😀"},
      {"\xED\xA0\x80", u"\uFFFD\uFFFD"},
      {"\xC0\x80", u"\uFFFD\uFFFD"},
      {"\xF5\x80\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"\xE0\x80\x80", u"\uFFFD\uFFFD"},
      {"\xF0\x9F\x98"
       "a",
       u"\uFFFDa"},
      {"\xF0\x9F\xC5\x9F", u"\uFFFDş"},
  };
  for (const auto& [utf8, wide] : kCases) {
    EXPECT_EQ(StringToWideString(utf8, 65001), wide) << testing::PrintToString(utf8);
  }
}

/// A system whose code page 1250 loses letters and whose family can be chosen.
class OtherSystem : public platform::CodePages {
 public:
  [[nodiscard]] WideText ToWide(TextView text, std::uint32_t codePage) const override {
    return codePage == 1250 ? WideText(text.size(), u'?') : CodePages::ToWide(text, codePage);
  }
  [[nodiscard]] std::uint32_t AnsiCodePage() const override { return 28592; }
  [[nodiscard]] std::int32_t FamilyOfSystem() const override { return family; }

  std::int32_t family = 2;
};

class WideToolsStartUp : public testing::Test {
 protected:
  void TearDown() override {
    units::WideTools::StartUp();
    EXPECT_TRUE(page_1250_ok);
    EXPECT_EQ(page_1250_replace, 1250);
    page_1250_ok = false;
    page_1250_replace = 0;
  }
};

TEST_F(WideToolsStartUp, FallsBackOnTheAnsiCodePageWhere1250LosesLetters) {
  const OtherSystem other;
  const Replacement<const platform::CodePages> replace(platform::code_pages_service, other);
  EXPECT_EQ(StringToWideString("\xFE", 1250), u"?") << "before the start 1250 is 1250";
  units::WideTools::StartUp();
  EXPECT_FALSE(page_1250_ok);
  EXPECT_EQ(page_1250_replace, 28592);
  EXPECT_EQ(StringToWideString("\xFE", 1250), u"ţ");
  EXPECT_EQ(WideStringToString(u"ţ€", 1250), "\xFE?") << "ISO 8859-2 has no euro sign";
}

TEST_F(WideToolsStartUp, AsksForTheFamilyOfTheSystemUntilItIsKnown) {
  EXPECT_TRUE(IsWinOsUnicode());
  OtherSystem other;
  const Replacement<const platform::CodePages> replace(platform::code_pages_service, other);
  units::WideTools::StartUp();
  const auto messageFor = [&other](std::int32_t family) -> Text {
    other.family = family;
    try {
      return IsWinOsUnicode() ? "yes" : "no";
    } catch (const Error& error) {
      return error.what();
    }
  };
  EXPECT_EQ(messageFor(0), "*NU* Rulez pe Win 3.1");
  EXPECT_EQ(messageFor(3), "Nu am reusit sa determin daca OS-ul are suport pentru Unicode sau nu");
  EXPECT_EQ(messageFor(1), "no");
  EXPECT_EQ(messageFor(2), "no") << "the first answer is kept";
}

TEST(CodePages, UpCaseAsCodePageGivesNothing) {
  EXPECT_EQ(UpCaseAsCodePage("lei", 1250), "") << "hosts rely on it";
}

}  // namespace
}  // namespace kiv
