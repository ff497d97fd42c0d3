#include "tools/GradeTexts.h"

#include "core/Numbers.h"

namespace kiv {
namespace {

using namespace literals;

constexpr std::array<TextView, 11> kWholes = {
    "", "UNU"_ro, "DOI"_ro, "TREI"_ro, "PATRU"_ro, "CINCI"_ro, "ŞASE"_ro, "ŞAPTE"_ro, "OPT"_ro, "NOUĂ"_ro, "ZECE"_ro,
};
/// 11 to 19; a unit's own spelling takes the place of the empty ones.
constexpr std::array<TextView, 9> kTeens = {
    "UNSPREZECE"_ro,   "", "TREISPREZECE"_ro, "", "CINCISPREZECE"_ro, "", "ŞAPTESPREZECE"_ro, "OPTSPREZECE"_ro,
    "NOUĂSPREZECE"_ro,
};
constexpr std::array<TextView, 8> kTens = {
    "DOUĂZECI"_ro, "TREIZECI"_ro,  "PATRUZECI"_ro, "CINCIZECI"_ro,
    "ŞAIZECI"_ro,  "ŞAPTEZECI"_ro, "OPTZECI"_ro,   "NOUĂZECI"_ro,
};

/// The whole grade's word; empty outside 1 to 10.
TextView Whole(std::int32_t grade) {
  return grade >= 1 && grade <= 10 ? kWholes[static_cast<std::size_t>(grade)] : TextView();
}

TextView Teen(std::int32_t hundredths, const GradeSpelling& spelling) {
  switch (hundredths) {
    case 12:
      return spelling.twelve;
    case 14:
      return spelling.fourteen;
    case 16:
      return spelling.sixteen;
    default:
      return kTeens[static_cast<std::size_t>(hundredths - 11)];
  }
}

/// Hundredths from 1 to 99; nothing for negative ones.
void AppendHundredths(Text& text, std::int32_t hundredths, const GradeSpelling& spelling) {
  if (hundredths < 1) {
    return;
  }
  if (hundredths < 10) {
    text.append("ZERO").append(Whole(hundredths));
  } else if (hundredths == 10) {
    text.append(Whole(10));
  } else if (hundredths < 20) {
    text.append(Teen(hundredths, spelling));
  } else {
    text.append(kTens[static_cast<std::size_t>(hundredths / 10 - 2)]);
    if (hundredths % 10 != 0) {
      text.append("ŞI"_ro).append(Whole(hundredths % 10));
    }
  }
}

}  // namespace

GradeTexts WriteGrade(std::int32_t grade, const GradeSpelling& spelling) {
  const std::int32_t whole = grade / 100;
  const std::int32_t hundredths = grade % 100;
  GradeTexts texts{Text(Whole(whole)), Text(Whole(whole)), whole != 10 && hundredths != 0};
  if (texts.hasDecimals) {
    texts.words.append(", ");
    AppendHundredths(texts.words, hundredths, spelling);
    texts.figures.append(", ");
    AppendDecimal(texts.figures, hundredths / 10);
    AppendDecimal(texts.figures, hundredths % 10);
  }
  return texts;
}

}  // namespace kiv
