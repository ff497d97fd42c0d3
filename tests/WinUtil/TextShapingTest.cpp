#include <gtest/gtest.h>

#include <random>

#include "Expect.h"
#include "kivtools/WinUtil/TextShaping.h"

namespace kiv {
namespace {

struct Shaping {
  TextView text;
  TextView shaped;
};

template <class Shape, std::size_t Count>
void ExpectShaped(Shape shape, const Shaping (&cases)[Count]) {
  for (const auto& [text, shaped] : cases) {
    EXPECT_EQ(shape(text), shaped) << "from: " << text;
  }
}

TEST(TextShaping, QuotesAndUnquotes) {
  ExpectShaped(TextInGhilimele, {{"", "\"\""}, {"\"", "\"\"\"\""}, {"a\"b", "\"a\"\"b\""}});
  EXPECT_EQ(TextIntreGhilimele('\'', "l'an"), "'l''an'");
  EXPECT_EQ(QuoteText("a|b", '|'), "|a||b|");
  ExpectShaped(TextDinGhilimele, {{"\"ab\"\"c\"", "ab\"c"},
                                  {"\"\"", ""},
                                  {"xaby", "ab"},        // the ends are dropped whatever they are
                                  {"\"ab\"cd\"", "ab"},  // reading stops at a lone quote
                                  {"\"ab\"\"\"", "ab\""},
                                  {"\"a\"\"", "a"}});
  std::mt19937 random(5);
  for (int i = 0; i < 20'000; ++i) {
    Text text(1 + random() % 12, ' ');
    std::ranges::generate(text, [&random] { return "ab\"\""[random() % 4]; });
    ASSERT_EQ(TextDinGhilimele(TextInGhilimele(text)), text);
  }
}

TEST(TextShaping, PadsAndFits) {
  EXPECT_EQ(PadLeft("7", 3, '0'), "007");
  EXPECT_EQ(PadLeft("1234", 3, '0'), "1234");
  EXPECT_EQ(PadLeft("1", -5, '0'), "1");
  EXPECT_EQ(PadRight("7", 3, '.'), "7..");
  EXPECT_EQ(PadRight("1234", 3, '.'), "1234");
  const struct {
    TextView text;
    std::int32_t width;
    TextView fill;
    TextView fixed;
  } kCases[] = {
      {"abcdef", 3, " ", "abf"}, {"abc", 3, "x", "abc"}, {"ab", 5, "", "ab   "}, {"ab", 6, "xyz", "abxyzz"},
      {"a", 6, "xyz", "axyzxz"}, {"abcdef", 1, "", "f"}, {"", 2, "xyz", "xz"},
  };
  for (const auto& [text, width, fill, fixed] : kCases) {
    EXPECT_EQ(TextDeLatimeFixa(text, width, fill), fixed);
  }
  ExpectError<Error>([] { return TextDeLatimeFixa("", 0, ""); }, "TextDeLatimeFixa: latimea 0 este sub 1");
  ExpectError<Error>([] { return TextDeLatimeFixa("a", -3, ""); }, "TextDeLatimeFixa: latimea -3 este sub 1");
}

TEST(TextShaping, KeepsDigits) {
  ExpectShaped(StripDot, {{"-1.5", "15"},
                          {"", ""},
                          {"RO 12\0"
                           "3",
                           "12"}});
  ExpectShaped(StripDotExtract2CifreDupaVirgula, {{"12,5", "1250"},
                                                  {"12", "1200"},
                                                  {"7.999", "799"},
                                                  {"-3.1", "310"},
                                                  {"", "00"},
                                                  {",", "00"},
                                                  {"1.x5", "15"},  // the two characters are taken before the digits are
                                                  {"a.1b2", "1"}});
  ExpectError<Error>([] { return StripDotExtract2CifreDupaVirgula("1,2.3"); },
                     "\"1.2.3\" include mai multe puncte zecimale");
}

TEST(TextShaping, GroupsSymbols) {
  const struct {
    TextView text;
    std::int32_t group;
    TextView grouped;
  } kCases[] = {
      {"123456789", 3, "123.456.789"}, {"1234", 3, "123.4"}, {"12", 3, "12"}, {"", 3, ""}, {"123", 1, "1.2.3"},
      {"123", 2'147'483'647, "123"},
  };
  for (const auto& [text, group, grouped] : kCases) {
    EXPECT_EQ(PunePuncteInSimbol(text, group), grouped);
  }
  ExpectError<Error>([] { return PunePuncteInSimbol("", 0); }, "PunePuncteInSimbol: grupa 0 este sub 1");
}

TEST(TextShaping, Masks) {
  const struct {
    TextView text;
    TextView mask;
    bool fits;
  } kCases[] = {
      {"12-AB", "##-??", true}, {"12-AB", "##-?", false}, {"12-AB", "1*", true}, {"1x", "##", false},
      {"", "", false},          {"", "*", true},          {"a", "", false},      {"#", "#", true},
      {"12", "###", false},     {"A", "a", false},        {"123", "12", false},  {"1", "1*", true},
      {"", "1*", false},        {"ab", "?b", true},
  };
  for (const auto& [text, mask, fits] : kCases) {
    EXPECT_EQ(RespectaMasca(text, mask), fits) << text << " for " << mask;
  }
}

TEST(TextShaping, IdentifiersDifferInAnyPart) {
  const Guid id = {0x01234567, 0x89AB, 0xCDEF, {1, 2, 3, 4, 5, 6, 7, 8}};
  EXPECT_TRUE(GuidEgal(id, Guid(id)));
  Guid others[] = {id, id, id, id};
  others[0].data1 ^= 0x8000'0000U;
  others[1].data2 ^= 1U;
  others[2].data3 ^= 1U;
  others[3].data4[7] ^= 1U;
  for (const Guid& other : others) {
    EXPECT_FALSE(GuidEgal(id, other));
  }
}

TEST(TextShaping, Names) {
  ExpectShaped(NumeDinNumeSiPrenume,
               {{"  Popescu   Ion Vasile", "Popescu"}, {"\t\r\nIon", "Ion"}, {" ", ""}, {"", ""}});
  ExpectShaped(PrenumeDinNumeSiPrenume,
               {{"  Popescu   Ion Vasile", "Ion"}, {"Popescu", ""}, {"Popescu ", ""}, {"A\nB\nC", "B"}, {"a\fb", ""}});
}

TEST(TextShaping, TelephoneNumbers) {
  ExpectShaped(ScrieFrumosNrTelefon, {{"0211234567", "021.12.34.567"},
                                      {"2211234", "221.12.11.234"},  // digits repeat; hosts rely on it
                                      {"0722123456", "0722.123.456"},
                                      {"(0722) 123-456", "0722.123.456"},
                                      {"0040722123456", "0040722.123.456"},
                                      {"123456", "123.456"},
                                      {"12345", "123.345"},
                                      {"1234", "123.234"},
                                      {"123", "123.123"},
                                      {"2221234", "2.221.234"},
                                      {"12", ""},
                                      {" \t", ""}});
}

}  // namespace
}  // namespace kiv
