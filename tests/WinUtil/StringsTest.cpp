#include <gmock/gmock.h>

#include <cfenv>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <random>

#include "Expect.h"
#include "kivtools/Host.h"
#include "kivtools/WinUtil/Strings.h"

namespace kiv {
namespace {

using namespace literals;
using testing::ElementsAre;

TEST(Explode, SplitsUpToItsLimit) {
  const struct {
    TextView separators, text;
    std::int32_t limit;
    StringList pieces;
  } kCases[] = {
      {",", "a,b,,c", 10, {"a", "b", "", "c"}},
      {",", "a,b,,c", 4, {"a", "b", "", "c"}},
      {",", "a,b,,c", 3, {"a", "b", ",c"}},
      {",", "a,b,,c", 2, {"a", "b,,c"}},
      {",", "a,b,,c", 1, {"a,b,,c"}},
      {",", "a,b,,c", 0, {"a,b,,c"}},
      {",", "a,b,,c", INT32_MIN, {"a,b,,c"}},
      {",;", ";a,b;", INT32_MAX, {"", "a", "b", ""}},
      {",,", "a,b", 9, {"a", "b"}},
      {"", "a,b", 9, {"a,b"}},
      {",", "", 9, {""}},
      {"\xFE\x80",
       "a\xFE"
       "b\x80"
       "c",
       9,
       {"a", "b", "c"}},
      {TextView("\0", 1), TextView("a\0b", 3), 9, {"a", "b"}},
  };
  for (const auto& [separators, text, limit, pieces] : kCases) {
    EXPECT_EQ(Explode(separators, text, limit), pieces) << separators << " " << text << " " << limit;
  }
}

TEST(SplitTextOnSeparator, AppendsWhatIsNotEmpty) {
  StringList list = {"first"};
  SplitTextOnSeparator("a,b,,c", ",", list);
  SplitTextOnSeparator(";;", ";,", list);
  SplitTextOnSeparator("", ";", list);
  SplitTextOnSeparator("d e;f;", "; ", list);
  SplitTextOnSeparator("g,h", "", list);
  EXPECT_THAT(list, ElementsAre("first", "a", "b", "c", "d", "e", "f", "g,h"));
  SplitTextOnSeparator(list[7], ",", list);
  EXPECT_THAT(list, ElementsAre("first", "a", "b", "c", "d", "e", "f", "g,h", "g", "h"));
}

/// The rules as they are said, one character at a time.
struct Plain {
  static StringList Explode(TextView separators, TextView text, std::int32_t limit) {
    StringList pieces;
    std::size_t start = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (separators.find(text[i]) != TextView::npos &&
          static_cast<std::int64_t>(pieces.size()) < std::int64_t{limit} - 1) {
        pieces.emplace_back(text.substr(start, i - start));
        start = i + 1;
      }
    }
    pieces.emplace_back(text.substr(start));
    return pieces;
  }
  static StringList Split(TextView separators, TextView text) {
    StringList pieces;
    for (const Text& piece : Explode(separators, text, INT32_MAX)) {
      if (!piece.empty()) {
        pieces.push_back(piece);
      }
    }
    return pieces;
  }
  static Text Hash(TextView text) {
    std::uint32_t hash = 0;
    for (std::size_t i = 1; i <= text.size(); ++i) {
      hash ^= static_cast<unsigned char>(text[i - 1]) * (1U << (i % 23));
    }
    return std::to_string(hash);
  }
  static Text Clean(Text path) {
    for (std::size_t at; (at = path.find(R"(\\)", 2)) != Text::npos;) {
      path.erase(at, 1);
    }
    return path;
  }
};

TEST(StringFastPaths, GiveWhatTheStepsGive) {
  std::mt19937 random(5'105);
  for (int round = 0; round < 3'000; ++round) {
    // Lengths past the hash's groups and the counting steps; few different characters, so that all rules meet.
    Text text(random() % (round % 100 == 0 ? 9'000 : 600), '\0');
    for (char& character : text) {
      character = random() % 4 == 0 ? static_cast<char>(random()) : ",;\\a"[random() % 4];
    }
    const Text separators = Text(",;\\\xFF").substr(0, random() % 5);
    const auto limit = static_cast<std::int32_t>(random() % 2 == 0 ? random() % 40 : 1U << (random() % 31));
    ASSERT_EQ(Explode(separators, text, limit), Plain::Explode(separators, text, limit));
    StringList pieces;
    SplitTextOnSeparator(text, separators, pieces);
    ASSERT_EQ(pieces, Plain::Split(separators, text));
    ASSERT_EQ(StringHash(text), Plain::Hash(text));
    ASSERT_EQ(RemoveDualSlshPath(text), Plain::Clean(text));
  }
}

TEST(StringHash, HasFixedValues) {
  EXPECT_EQ(StringHash(""), "0");
  EXPECT_EQ(StringHash("A"), "130");
  EXPECT_EQ(StringHash(Text(22, '\0') + "\xFF"), "255");         // position 23 has weight 1
  EXPECT_EQ(StringHash(Text(21, '\0') + "\xFF"), "1069547520");  // position 22 has weight 4194304
  EXPECT_EQ(StringHash(Text(1'000'000, 'x') + "\xFE"), Plain::Hash(Text(1'000'000, 'x') + "\xFE"));
}

TEST(RemoveDualSlshPath, KeepsTheFirstTwoCharacters) {
  const struct {
    TextView path, cleaned;
  } kCases[] = {
      {R"(\\srv\\dir\\\file)", R"(\\srv\dir\file)"},
      {R"(\\\srv)", R"(\\\srv)"},
      {R"(\\\\srv\\)", R"(\\\srv\)"},
      {R"(c:\\a)", R"(c:\a)"},
      {"c://a", "c://a"},
      {R"(\)", R"(\)"},
      {"", ""},
      {R"(a\\)", R"(a\\)"},
  };
  for (const auto& [path, cleaned] : kCases) {
    EXPECT_EQ(RemoveDualSlshPath(path), cleaned) << path;
  }
}

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double kTwoTo63 = 9223372036854775808.0;

/// Calls `check` in each rounding mode and, where the processor has the setting, with 53 bits of mantissa too.
template <class Check>
void InEverySetting(Check check) {
  for (const int mode : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
    for (const unsigned precision : {0x0300U, 0x0200U}) {
      std::uint16_t control = 0;
      asm volatile("fnstcw %0" : "=m"(control));
      const auto changed = static_cast<std::uint16_t>((control & 0xFCFFU) | precision);
      asm volatile("fldcw %0" : : "m"(changed));
      std::fesetround(mode);
      check();
      EXPECT_EQ(std::fegetround(), FE_TONEAREST) << "left so on purpose";
      std::uint16_t after = 0;
      asm volatile("fnstcw %0" : "=m"(after));
      EXPECT_EQ(after & 0x0300U, precision) << "the caller's own";
      asm volatile("fldcw %0" : : "m"(control));
    }
  }
}

TEST(SmartRound, SettlesHalvesUpwardInEverySetting) {
  const struct {
    double value, rounded;
  } kCases[] = {
      {2.5, 3},
      {-2.5, -2},
      {0.5, 1},
      {-0.5, 0},
      {1.4999, 1},
      {-1.5001, -2},
      {0, 0},
      {0.49999999998, 0},
      {0.499999999995, 1},                     // the nudge lifts it over the half
      {4503599627370495.5, 4503599627370496},  // the nudge is lost: halves to even
      {1024.5, 1025},
      {1048576.5, 1048577},
      {134217728.5, 134217729},
      {67108864.5, 67108865},  // a mantissa of 53 bits would lose it here
      {kTwoTo63 - 1024, kTwoTo63 - 1024},
      {-kTwoTo63, -kTwoTo63},
  };
  for (const auto& [value, rounded] : kCases) {
    InEverySetting([value = value, rounded = rounded] { EXPECT_EQ(SmartRound(value), rounded) << value; });
  }
  EXPECT_FALSE(std::signbit(SmartRound(-0.25)));
  for (const double refused : {kTwoTo63, -kTwoTo63 * 1.0001, 1e300, kInfinity, -kInfinity, kNotANumber}) {
    EXPECT_THROW(SmartRound(refused), Error) << refused;
  }
  ExpectError<Error>([] { SmartRound(1e300); }, "SmartRound: rezultatul pentru 1e+300 nu incape in 64 de biti");
}

TEST(SmartRoundTo, GivesTheNearestDoubleInEverySetting) {
  const struct {
    double value;
    int digit;
    double rounded;
  } kCases[] = {
      {0.125, -2, 0.13},
      {-0.125, -2, -0.12},
      {1.005, -2, 1.01},
      {2.675, -2, 2.68},
      {250, 2, 300},
      {-250, 2, -200},
      {149, 2, 100},
      {2.5, 0, 3},
      {1234567.894999, -2, 1234567.89},
      {0, -11, 1e-11},
      {123.456, -12, 123.45600000001},
      {5e17, 18, 0},
      {6e17, 18, 1e18},
      {1, 127, 0},
      {9e130, 127, 9e130},
  };
  for (const auto& [value, digit, rounded] : kCases) {
    InEverySetting([=, value = value, digit = digit, rounded = rounded] {
      EXPECT_EQ(SmartRoundTo(value, static_cast<std::int8_t>(digit)), rounded) << value << " " << digit;
    });
  }
  // Every sum of money up to 10,000 lei comes out as its own literal.
  for (int bani = 0; bani <= 1'000'000; ++bani) {
    const double exact = bani / 100.0;
    ASSERT_EQ(SmartRoundTo(exact, -2), exact);
    ASSERT_EQ(SmartRoundTo(exact + 0.004, -2), exact);
  }
  EXPECT_THROW(SmartRoundTo(1e17, -2), Error);
  EXPECT_THROW(SmartRoundTo(0, -128), Error) << "the nudge alone is 1e117 multiples";
  EXPECT_THROW(SmartRoundTo(kNotANumber, 0), Error);
  EXPECT_THROW(SmartRoundTo(1e300, 127), Error);
}

TEST(TrimestruLuna, WalksTheYear) {
  for (int month = -2; month <= 14; ++month) {
    const int quarter = month < 1 || month > 12 ? -1 : month <= 3 ? 1 : month <= 6 ? 2 : month <= 9 ? 3 : 4;
    EXPECT_EQ(TrimestruLuna(month), quarter) << month;
  }
  EXPECT_EQ(TrimestruLuna(INT32_MAX), -1);
}

TEST(Variants, ConvertByKind) {
  const struct {
    Variant value;
    double days;
    std::int32_t integer;
  } kCases[] = {
      {Null{}, 11.5, 22},
      {true, -1, -1},
      {false, 0, 0},
      {std::int32_t{-7}, -7, -7},
      {std::int64_t{2147483647}, 2147483647, INT32_MAX},
      {2.5, 2.5, 2},
      {-3.5, -3.5, -4},
      {-0.5, -0.5, 0},
      {2147483647.4, 2147483647.4, INT32_MAX},
      {-2147483648.5, -2147483648.5, INT32_MIN},
      {1.5_lei, 1.5, 2},
      {DateTime(45356.25), 45356.25, 45356},
      {Text("12"), 12, 12},
      {Text("  -12.5"), -12.5, -12},
      {Text("+.5"), 0.5, 0},
      {Text("7."), 7, 7},
      {Text("0." + Text(400, '0') + "1"), 0, 0},
  };
  for (const auto& [value, days, integer] : kCases) {
    EXPECT_EQ(VarToDateDef(value, DateTime(11.5)).Days(), days) << value.index() << " " << days;
    EXPECT_EQ(VarToIntDef(value, 22), integer) << value.index() << " " << days;
  }
  for (const Text text : {"", " ", "x", "12 ", "1,5", "1e3", "0x10", "--1", "+-1", ".", "inf", "nan", "1.2.3"}) {
    EXPECT_THROW(VarToIntDef(text, 0), ConversionError) << text;
    EXPECT_THROW(VarToDateDef(text, {}), ConversionError) << text;
  }
  for (const Variant& large :
       {Variant(2147483647.5), Variant(std::int64_t{-2147483649}), Variant(kNotANumber), Variant(kInfinity),
        Variant(Text("2147483648")), Variant(DateTime(1e10)), Variant(922337203685477.5807_lei)}) {
    EXPECT_THROW(VarToIntDef(large, 0), ConversionError) << large.index();
  }
  EXPECT_THROW(VarToDateDef(Text(400, '9'), {}), ConversionError);
  ExpectError<ConversionError>([] { VarToIntDef(std::int64_t{1} << 40, 0); },
                               "VarToIntDef: 1099511627776 nu incape in 32 de biti");
}

TEST(SystemQueries, AnswerForThisMachine) {
  const char* const user = std::getenv("USER");
  EXPECT_TRUE(!LogOnUserName().empty());
  EXPECT_TRUE(user == nullptr || LogOnUserName() == user) << LogOnUserName();
  int major = 10;  // on Windows, where there is no such file, Wine's is above 6
  std::ifstream("/proc/sys/kernel/osrelease") >> major;
  EXPECT_EQ(EsteWindowsVista(), major >= 6) << major;
}

TEST(Clipboard, GoesThroughTheInstalledHost) {
  struct Recorder : host::Clipboard {
    void SetText(TextView text) override { last = text; }
    [[nodiscard]] Text GetText() override { return last; }
    Text last;
  };
  struct MyHost : host::Host {
    [[nodiscard]] host::Clipboard& GetClipboard() override { return recorder; }
    Recorder recorder;
  };
  {
    MyHost mine;
    host::Install(mine);
    CopiazaTextInClipboard("ţară"_ro);
    EXPECT_EQ(mine.recorder.last, "ţară"_ro);
    EXPECT_EQ(&host::Current(), &mine);
  }
  CopiazaTextInClipboard("şi fără el"_ro);  // the built-in host is back
  EXPECT_EQ(host::Current().GetClipboard().GetText(), "şi fără el"_ro);
}

}  // namespace
}  // namespace kiv
