#include <gtest/gtest.h>

#include <limits>

#include "Expect.h"
#include "kivtools/WideTools/ScaledNumbers.h"

namespace kiv {
namespace {

TEST(ScaledNumbers, Writes) {
  const struct {
    std::int64_t value;
    std::int32_t kind;
    TextView text;
  } kCases[] = {
      {0, 0, "0"},
      {999, 0, "999"},
      {1'234'567, 0, "1.234.567"},
      {1'000'005, 0, "1.000.005"},
      {-1234, 0, "-1.234"},
      {std::numeric_limits<std::int64_t>::min(), 0, "-9.223.372.036.854.775.808"},
      {123'456, 2, "1234,56"},
      {5, 2, "0,05"},
      {123'456, 22, "1.234,56"},
      {0, 22, "0,00"},
      {12'345'678, 4, "1.234,5678"},
      {12'345'600, 4, "1.234,56"},
      {5, 4, "0,0005"},
      {12'345'650, 42, "1.234,57"},
      {12'345'649, 42, "1.234,56"},
      {99'999'999, 42, "10.000,00"},
      {-50, 42, "-0,01"},
      {12'340'000, 422, "1.234,00"},
      {12'345'600, 422, "1.234,56"},
      {12'345'678, 422, "1.234,5678"},
      {42, 3, "[42]"},
      {-42, 3, "-[42]"},
      {1'234'567, 3, "[1234567]"},
  };
  for (const auto& [value, kind, text] : kCases) {
    EXPECT_EQ(ScrieFoarteFrumos(value, kind), text) << value << " of kind " << kind;
  }
  ExpectError<Error>([] { return ScrieFoarteFrumos(1500, 7); }, "Nu cunosc tipul de date (7)(1500)");
  ExpectError<Error>([] { return ScrieFoarteFrumos(-1500, -2); }, "Nu cunosc tipul de date (-2)(1500)");
}

}  // namespace
}  // namespace kiv
