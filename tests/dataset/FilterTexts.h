#pragma once

#include <random>
#include <string>
#include <vector>

#include "kivtools/Text.h"

namespace kiv {

/// The fields by whose names filters are made, and values that they may be compared with.
struct FilterFields {
  StringList numbers;
  StringList texts;
  StringList flags;
  StringList anything;
  StringList numberLiterals;
  StringList textLiterals;
  StringList patterns;
  /// Whole conditions and numbers that only one language has.
  StringList conditions;
  StringList moreNumbers;
};

/// Makes filters at random.
class FilterTexts {
 public:
  FilterTexts(const FilterFields& fields, std::uint32_t seed) : fields_(fields), random_(seed) {}

  Text Condition(int depth) {
    switch (depth > 0 ? Below(13) : 4 + Below(9)) {
      case 0:
      case 1:
        return "(" + Condition(depth - 1) + " and " + Condition(depth - 1) + ")";
      case 2:
        return "(" + Condition(depth - 1) + " or " + Condition(depth - 1) + ")";
      case 3:
        return "not (" + Condition(depth - 1) + ")";
      case 4:
        return OneOf(fields_.anything) + " is " + Maybe("not ") + "null";
      case 5:
        return OneOf(fields_.numbers) + " " + Maybe("not ") + "between " + Literal() + " and " + Literal();
      case 6:
        return OneOf(fields_.numbers) + " " + Maybe("not ") + "in (" + Literal() + ", " + Literal() + ", " + Literal() +
               ")";
      case 7:
        return OneOf(fields_.texts) + " " + Maybe("not ") + "like " + OneOf(fields_.patterns);
      case 8:
        return OneOf(fields_.texts) + " in (" + OneOf(fields_.textLiterals) + ", " + OneOf(fields_.textLiterals) + ")";
      case 9:
        return OneOf(fields_.texts) + Relation() + OneOf(Below(4) == 0 ? fields_.texts : fields_.textLiterals);
      case 10:
        return fields_.conditions.empty() ? OneOf(fields_.flags) : OneOf(fields_.conditions);
      case 11:
        return Below(2) == 0 ? Literal() + Relation() + OneOf(fields_.numbers)
                             : OneOf(fields_.numbers) + Relation() + Literal();
      default:
        return Number(depth) + Relation() + Number(depth);
    }
  }

 private:
  std::uint32_t Below(std::uint32_t limit) { return static_cast<std::uint32_t>(random_() % limit); }
  const Text& OneOf(const StringList& list) { return list[Below(static_cast<std::uint32_t>(list.size()))]; }
  Text Maybe(const char* text) { return Below(2) == 0 ? text : ""; }
  Text Literal() { return OneOf(fields_.numberLiterals); }
  Text Relation() {
    static const StringList kRelations = {" = ", " <> ", " < ", " <= ", " > ", " >= "};
    return OneOf(kRelations);
  }
  Text Number(int depth) {
    switch (depth > 0 ? Below(8) : Below(4)) {
      case 0:
        return Literal();
      case 1:
      case 2:
        return OneOf(fields_.numbers);
      case 3:
        return OneOf(fields_.moreNumbers.empty() ? fields_.numbers : fields_.moreNumbers);
      case 4:
        return "(" + Number(depth - 1) + " - " + Number(depth - 1) + ")";
      case 5:
        return "(" + Number(depth - 1) + " * " + OneOf(fields_.numbers) + ")";
      default:
        return "(" + Number(depth - 1) + " + " + Number(depth - 1) + ")";
    }
  }

  const FilterFields& fields_;
  std::mt19937 random_;
};

}  // namespace kiv
