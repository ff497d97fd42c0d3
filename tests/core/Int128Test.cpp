#include <gtest/gtest.h>

#include <array>
#include <random>

#include "core/Int128.h"

namespace kiv {
namespace {

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();

TEST(Int128, ProductsAreDividedAsTheyWereMultiplied) {
  // What is divided by its own factor is the other one again, and with half the factor more it rounds to even.
  std::mt19937_64 random(1);
  std::vector<std::int64_t> numbers = {1, -1, 2, 3, 10, 10'000, -10'000, kMost, kLeast, 4'294'967'296, -4'294'967'295};
  for (int i = 0; i < 200; ++i) {
    numbers.push_back(static_cast<std::int64_t>(random()) >> (random() % 63));
  }
  for (const std::int64_t left : numbers) {
    for (const std::int64_t right : numbers) {
      const Int128 product = Int128::Product(left, right);
      if (right == 0) {
        EXPECT_EQ(product, Int128(0));
        continue;
      }
      ASSERT_EQ(product.DividedBy(right), left) << left << " * " << right;
      if (right % 2 == 0 && left != kLeast && left != kMost) {
        const Int128 half = right / 2;
        ASSERT_EQ((product + half).DividedBy(right), left % 2 == 0 ? left : left + 1) << left << " " << right;
        ASSERT_EQ((product - half).DividedBy(right), left % 2 == 0 ? left : left - 1) << left << " " << right;
        ASSERT_EQ((product + half - Int128(right > 0 ? 1 : -1)).DividedBy(right), left) << left << " " << right;
      }
    }
  }
}

TEST(Int128, RefusesWhat64BitsDoNotHold) {
  const Int128 most = kMost;
  EXPECT_EQ(most.In64Bits(), kMost);
  EXPECT_EQ((most + 1).In64Bits(), std::nullopt);
  EXPECT_EQ((Int128(kLeast) - 1).In64Bits(), std::nullopt);
  EXPECT_EQ((most + 1).DividedBy(1), std::nullopt);
  EXPECT_EQ((most + 1).DividedBy(-1), kLeast);
  EXPECT_EQ((most + 2).DividedBy(-1), std::nullopt);
  EXPECT_EQ(Int128::Product(kLeast, kLeast).DividedBy(1), std::nullopt);
  // The quotient itself needs 65 bits only once it is rounded.
  EXPECT_EQ((Int128::Product(kMost, 2) + 1).DividedBy(2), std::nullopt);
  EXPECT_EQ((Int128::Product(kMost, 4) + Int128::Product(4, 1) + Int128::Product(kMost, 4) + 3).DividedBy(4),
            std::nullopt);
}

TEST(Int128, IsOrderedBySignAndSize) {
  const std::array<Int128, 7> rising = {
      Int128::Product(kLeast, kMost), Int128(kLeast) - 1, Int128(kLeast), Int128(-1), Int128(0), Int128(kMost) + 1,
      Int128::Product(kMost, kMost)};
  for (std::size_t i = 0; i < rising.size(); ++i) {
    for (std::size_t j = 0; j < rising.size(); ++j) {
      EXPECT_EQ(rising[i] < rising[j], i < j) << i << " " << j;
    }
    EXPECT_EQ(rising[i] - rising[i], Int128(0));
    EXPECT_EQ(rising[i].IsNegative(), i < 4);
  }
}

}  // namespace
}  // namespace kiv
