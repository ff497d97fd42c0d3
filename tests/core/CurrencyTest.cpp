#include <gtest/gtest.h>

#include "kivtools/Currency.h"

namespace kiv {
namespace {

using namespace literals;

TEST(CurrencyLiteral, IsExact) {
  static_assert((1'234.56_lei).Raw() == 12'345'600);
  static_assert((0.0001_lei).Raw() == 1);
  static_assert((7_lei).Raw() == 70'000);
  static_assert((1.23450000_lei).Raw() == 12'345, "zeros past the fourth decimal lose nothing");
  static_assert((922337203685477.5807_lei).Raw() == INT64_MAX);
  static_assert(1.5_lei < 1.5001_lei);
  EXPECT_EQ(Currency::FromRaw(INT64_MIN).Raw(), INT64_MIN);
}

}  // namespace
}  // namespace kiv
