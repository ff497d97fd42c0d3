#include <gtest/gtest.h>

#include <array>

#include "Expect.h"
#include "kivtools/WinUtil/Transliteration.h"

namespace kiv {
namespace {

using namespace literals;

TEST(Transliteration, TakesDiacriticsOff) {
  EXPECT_EQ(RoToEn("ŞTIINŢĂ"_ro), "STIINTA");
  EXPECT_EQ(RoToEn("Ce?"), "Cet") << "every question mark was once a lost letter; hosts rely on it";
  Text all;
  for (int byte = 0; byte < 256; ++byte) {
    all.push_back(static_cast<char>(byte));
  }
  const TextView letters = "ăâîşţĂÂÎŞŢ?"_ro;
  const TextView plain = "aaistAAISTt";
  Text expected = all;
  for (std::size_t i = 0; i < letters.size(); ++i) {
    expected[static_cast<unsigned char>(letters[i])] = plain[i];
  }
  EXPECT_EQ(RoToEn(all), expected);
}

TEST(Transliteration, ExpandsEscapes) {
  const struct {
    TextView escaped;
    TextView text;
  } kCases[] = {
      {"Bra@sov, @Tara Rom@hneasc@a", "Braşov, Ţara Românească"_ro},
      {"@a@h@i@s@t@A@H@I@S@T", "ăâîşţĂÂÎŞŢ"_ro},
      {"@@", "@"},
      {"@@a@@@a", "@a@ă"_ro},
      {"a@", "a"},
      {"@", ""},
      {"@z", ""},
      {"x@?y", "xy"},
      {TextView("@\0z", 3), "z"},
      {"", ""},
  };
  for (const auto& [escaped, text] : kCases) {
    EXPECT_EQ(RoText(escaped), text) << escaped;
  }
  for (int byte = 0; byte < 256; ++byte) {
    const Text escaped = {'@', static_cast<char>(byte)};
    EXPECT_EQ(RoText(escaped).empty(), TextView("ahistAHIST@").find(escaped[1]) == TextView::npos) << byte;
  }
}

TEST(Transliteration, ReplacesOneByte) {
  EXPECT_EQ(CharReplace("1,50, 2", ',', '.'), "1.50. 2");
  EXPECT_EQ(CharReplace("aba", 'a', 'a'), "aba");
  EXPECT_EQ(CharReplace(TextView("a\0b", 3), '\0', ' '), "a b");
}

TEST(Transliteration, FillsMasks) {
  const struct {
    TextView mask;
    StringList pairs;
    TextView text;
  } kCases[] = {
      {"Stimate %Nume%, suma: %SUMA% lei %x%", {"nume", "Ion", "suma", "12,50"}, "Stimate Ion, suma: 12,50 lei %x%"},
      {"%NUME%%nume%", {"NuMe", "Ion"}, "IonIon"},
      {"%n%", {"n", "first", "N", "last"}, "last"},
      {"%v%", {"n", "v", "v", ""}, ""},  // a value is never a name; a value may be empty
      {"%Ion%", {"nume", "Ion"}, "%Ion%"},
      {"%a%b%a%", {"a", "%b%"}, "%b%b%b%"},  // values are not searched
      {"100%% %%", {"", "empty name"}, "100empty name empty name"},
      {"100%%", {"x", "y"}, "100%%"},
      {"a %b", {"b", "c"}, "a "},  // open at the end: dropped with its name
      {"a %b% %", {}, "a %b% "},
      {"%Ş%", {"\xBA", "small s"}, "%\xAA%"},  // ASCII letters only
      {"", {"a", "b"}, ""},
      {"%a%", {"a", "b", "odd"}, "b"},  // the name without a value is not asked for
  };
  for (const auto& [mask, pairs, text] : kCases) {
    EXPECT_EQ(MaskReplace(FromUtf8(mask), pairs), text) << mask;
  }
  ExpectError<Error>(
      [] {
        return MaskReplace("%ODD%", {"odd", "b", "Odd"});
      },
      "MaskReplace: numele \"Odd\" nu are valoare");
  ExpectError<Error>([] { return MaskReplace("%%", {""}); }, "MaskReplace: numele \"\" nu are valoare");
}

}  // namespace
}  // namespace kiv
