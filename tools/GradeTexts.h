#pragma once

#include <array>
#include <cstdint>

#include "kivtools/Types.h"

namespace kiv {

/// A grade (times 100) in words and with its hundredths in figures.
struct GradeTexts {
  Text words;
  Text figures;
  bool hasDecimals = false;
};

/// The words of 12, 14 and 16 hundredths, which each unit spells in its own way.
struct GradeSpelling {
  TextView twelve;
  TextView fourteen;
  TextView sixteen;
};

GradeTexts WriteGrade(std::int32_t grade, const GradeSpelling& spelling);

}  // namespace kiv
