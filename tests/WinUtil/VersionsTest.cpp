#include <gtest/gtest.h>

#include <array>

#include "Expect.h"
#include "kivtools/WinUtil/Versions.h"

namespace kiv {
namespace {

TEST(AnalizeazaNrVersiune, FollowsItsGrammar) {
  const struct {
    TextView version;
    bool valid;
    std::array<std::int32_t, 4> parts;
  } kCases[] = {
      {"", true, {0, 0, 0, 0}},
      {"7", true, {7, 0, 0, 0}},
      {"7.1.2.3", true, {7, 1, 2, 3}},
      {"7..2", true, {7, 0, 2, 0}},
      {".", true, {0, 0, 0, 0}},
      {"...", true, {0, 0, 0, 0}},
      {"1.2.3.", true, {1, 2, 3, 0}},
      {"07.010", true, {7, 10, 0, 0}},
      {"2147483648.4294967296.4294967297.99999999999", true, {INT32_MIN, 0, 1, 1'215'752'191}},
      {"1.2.3.4.", false, {1, 2, 3, 4}},
      {"7.1.2.3.4", false, {7, 1, 2, 3}},
      {"4.5x", false, {4, 5, 0, 0}},
      {" 7", false, {0, 0, 0, 0}},
      {"-1", false, {0, 0, 0, 0}},
      {"7/1", false, {7, 0, 0, 0}},
      {TextView("7\0", 2), false, {7, 0, 0, 0}},
      {"7\xB2", false, {7, 0, 0, 0}},
  };
  for (const auto& [version, valid, expected] : kCases) {
    std::array<std::int32_t, 4> parts = {-1, -1, -1, -1};
    EXPECT_EQ(AnalizeazaNrVersiune(parts[0], parts[1], parts[2], parts[3], version), valid) << version;
    EXPECT_EQ(parts, expected) << version;
    EXPECT_EQ(NumarulDeVersiuneEsteValid(version), valid) << version;
  }
}

TEST(CompareNrVersiune, GivesTheRawDifference) {
  const struct {
    TextView a, b;
    std::int32_t difference;
  } kCases[] = {
      {"1.10", "1.9", 1},
      {"2", "1.99.99.99", 1},
      {"1.2", "1.2.0.0", 0},
      {"", "0.0.0.0", 0},
      {"3.0", "1.0", 2},
      {"1.0", "3.0", -2},
      {"1.2.3", "1.2.10", -7},
      {"1.2.3.4", "1.2.3.9", -5},
      {"2147483647", "2147483648", -1},
      {"2147483648", "1", INT32_MAX},
  };
  for (const auto& [a, b, difference] : kCases) {
    EXPECT_EQ(CompareNrVersiune(a, b), difference) << a << " " << b;
  }
  ExpectError<Error>([] { return CompareNrVersiune("x", "y"); }, "x nu este un numar de versiune valid");
  ExpectError<Error>([] { return CompareNrVersiune("1", "y"); }, "y nu este un numar de versiune valid");
  ExpectError<Error>([] { return CompareNrVersiune(" 1", "1"); }, " 1 nu este un numar de versiune valid");
}

}  // namespace
}  // namespace kiv
