#include "kivtools/WinUtil/Grades.h"

#include "tools/GradeTexts.h"

namespace kiv {
namespace {

using namespace literals;

/// Not what a dictionary says, nor what WideTools writes; certificates are compared byte for byte, so it stays.
constexpr GradeSpelling kSpelling = {"DOUASPREZECE"_ro, "PATRUSPREZECE"_ro, "ŞASESPREZECE"_ro};

}  // namespace

Text NotaToStr(std::int32_t grade, std::int32_t mode) {
  const GradeTexts texts = WriteGrade(grade, kSpelling);
  switch (mode) {
    case 1:
      return "(" + texts.words + ")";
    case 2:
      return "(" + texts.figures + ")";
    case 3:
      return "(" + texts.figures + (texts.hasDecimals ? "%)" : ")");
    default:
      return {};
  }
}

}  // namespace kiv
