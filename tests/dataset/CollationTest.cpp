#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "kivtools/Text.h"
#include "kivtools/dataset/Collation.h"

namespace kiv {
namespace {

constexpr int SignOf(int number) {
  return (number > 0) - (number < 0);
}

TEST(Collation, OrdersTextsAsItsKindSays) {
  // Each text with its place; texts of one place are equal.
  const struct {
    Collation collation;
    std::vector<std::pair<Text, int>> texts;
  } kKinds[] = {
      {Collation::Romanian,
       {{"", 0},
        {"\x01", 0},
        {" ", 1},
        {"1", 2},
        {"a", 3},
        {"A", 4},
        {"\xE1", 5},
        {"ab", 6},
        {FromUtf8("ă"), 7},
        {FromUtf8("â"), 8},
        {"b", 9},
        {"Sus", 10},
        {"sut", 11},
        {FromUtf8("şa"), 12},
        {FromUtf8("Şa"), 13},
        {FromUtf8("şaaaaaaaaaab"), 14},
        {FromUtf8("şaaaaaaaaaac"), 15},
        {"z", 16}}},
      {Collation::RomanianNoCase, {{"arges", 0}, {"ARGES", 0}, {"Arg\xE9s", 1}, {FromUtf8("Argeş"), 2}}},
      {Collation::Binary,
       {{"", 0}, {Text(1, '\0'), 1}, {"Z", 2}, {"Zaaaaaaab", 3}, {"Zaaaaaaac", 4}, {"a", 5}, {"\xAA", 6}}},
  };
  for (const auto& [collation, texts] : kKinds) {
    for (const auto& [left, leftPlace] : texts) {
      for (const auto& [right, rightPlace] : texts) {
        const int expected = SignOf(leftPlace - rightPlace);
        EXPECT_EQ(SignOf(CompareTexts(left, right, collation)), expected) << left << " " << right;
        const std::uint64_t leftPrefix = CollationPrefix(left, collation);
        const std::uint64_t rightPrefix = CollationPrefix(right, collation);
        EXPECT_TRUE(leftPrefix == rightPrefix || (leftPrefix < rightPrefix) == (expected < 0)) << left << " " << right;
      }
    }
  }
}

TEST(Collation, PrefixesTellMostTextsApart) {
  for (const Collation collation : {Collation::Romanian, Collation::RomanianNoCase, Collation::Binary}) {
    EXPECT_LT(CollationPrefix("Arad", collation), CollationPrefix("Bacau", collation));
    EXPECT_LT(CollationPrefix("Caranseb", collation), CollationPrefix("Caransev", collation));
  }
  EXPECT_LT(CollationPrefix("arad", Collation::Romanian), CollationPrefix("\xE1rad", Collation::Romanian));
  EXPECT_LT(CollationPrefix("a", Collation::Romanian), CollationPrefix("A", Collation::Romanian));
}

}  // namespace
}  // namespace kiv
