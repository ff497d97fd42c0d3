#include <gtest/gtest.h>

#include <limits>

#include "kivtools/WideTools/Grades.h"
#include "kivtools/WinUtil/Grades.h"

namespace kiv {
namespace {

using namespace literals;

// Hosts compare printed certificates byte for byte: the two units' spellings of 12, 14 and 16, the trailing T and "%)"
// among them, are not to be harmonised.
TEST(Grades, KnownForms) {
  const struct {
    std::int32_t grade;
    Text words;         // NotaToTextLung
    Text figures;       // NotaToTextScurt
    Text winUtilWords;  // NotaToStr in mode 1, without its brackets
  } kCases[] = {
      {950, "NOUĂ, CINCIZECI"_ro, "NOUĂ, 50"_ro, "NOUĂ, CINCIZECI"_ro},
      {705, "ŞAPTE, ZEROCINCI"_ro, "ŞAPTE, 05"_ro, "ŞAPTE, ZEROCINCI"_ro},
      {912, "NOUĂ, DOISPREZECE"_ro, "NOUĂ, 12"_ro, "NOUĂ, DOUASPREZECE"_ro},
      {914, "NOUĂ, PAISPREZECE"_ro, "NOUĂ, 14"_ro, "NOUĂ, PATRUSPREZECE"_ro},
      {816, "OPT, ŞAISPREZECET"_ro, "OPT, 16"_ro, "OPT, ŞASESPREZECE"_ro},
      {666, "ŞASE, ŞAIZECIŞIŞASE"_ro, "ŞASE, 66"_ro, "ŞASE, ŞAIZECIŞIŞASE"_ro},
      {100, "UNU", "UNU", "UNU"},
      {101, "UNU, ZEROUNU", "UNU, 01", "UNU, ZEROUNU"},
      {1000, "ZECE", "ZECE", "ZECE"},
      {1099, "ZECE", "ZECE", "ZECE"},
      {1150, ", CINCIZECI", ", 50", ", CINCIZECI"},
      {50, ", CINCIZECI", ", 50", ", CINCIZECI"},
      {0, "", "", ""},
      {-100, "", "", ""},
      {-955, ", ", ", -5-5", ", "},  // each figure keeps its sign
      {-5, ", ", ", 0-5", ", "},
      {-1050, ", ", ", -50", ", "},
      {std::numeric_limits<std::int32_t>::min(), ", ", ", -4-8", ", "},
      {std::numeric_limits<std::int32_t>::max(),
       ", PATRUZECI\xAAI\xAA"
       "APTE",
       ", 47",
       ", PATRUZECI\xAAI\xAA"
       "APTE"},
  };
  for (const auto& [grade, words, figures, winUtilWords] : kCases) {
    EXPECT_EQ(NotaToTextLung(grade), words) << grade;
    EXPECT_EQ(NotaToTextScurt(grade), figures) << grade;
    EXPECT_EQ(NotaToStr(grade, 1), "(" + winUtilWords + ")") << grade;
    EXPECT_EQ(NotaToStr(grade, 2), "(" + figures + ")") << grade;
    const bool hasDecimals = figures.find(',') != Text::npos;
    EXPECT_EQ(NotaToStr(grade, 3), "(" + figures + (hasDecimals ? "%)" : ")")) << grade;
    for (const std::int32_t mode : {0, 4, -1, std::numeric_limits<std::int32_t>::min()}) {
      EXPECT_EQ(NotaToStr(grade, mode), "") << grade;
    }
  }
}

TEST(Grades, EveryWholeAndEveryHundredth) {
  const Text kOnes[] = {"", "UNU", "DOI", "TREI", "PATRU", "CINCI", "ŞASE"_ro, "ŞAPTE"_ro, "OPT", "NOUĂ"_ro, "ZECE"};
  const Text kTeens[] = {"UNSPREZECE",      "DOISPREZECE",      "TREISPREZECE", "PAISPREZECE",    "CINCISPREZECE",
                         "ŞAISPREZECET"_ro, "ŞAPTESPREZECE"_ro, "OPTSPREZECE",  "NOUĂSPREZECE"_ro};
  const Text kTens[] = {"DOUĂZECI"_ro, "TREIZECI",     "PATRUZECI", "CINCIZECI",
                        "ŞAIZECI"_ro,  "ŞAPTEZECI"_ro, "OPTZECI",   "NOUĂZECI"_ro};
  for (std::int32_t h = 1; h < 100; ++h) {
    const auto tens = static_cast<std::size_t>(h / 10);
    const auto ones = static_cast<std::size_t>(h % 10);
    const Text word = h < 10    ? "ZERO" + kOnes[ones]
                      : h == 10 ? kOnes[10]
                      : h < 20  ? kTeens[ones - 1]
                                : kTens[tens - 2] + (ones == 0 ? Text() : "ŞI"_ro + kOnes[ones]);
    EXPECT_EQ(NotaToTextLung(300 + h), "TREI, " + word);
    if (h != 12 && h != 14 && h != 16) {
      EXPECT_EQ(NotaToStr(300 + h, 1), "(TREI, " + word + ")");
    }
  }
  for (std::int32_t whole = 1; whole <= 10; ++whole) {
    EXPECT_EQ(NotaToTextLung(whole * 100), kOnes[whole]);
  }
}

}  // namespace
}  // namespace kiv
