#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

/// The rows that the benchmarks of datasets are made of: number, day, amount, double, one of 1,000 towns, a name.
namespace bench {

struct Line {
  std::int32_t id;
  std::int32_t day;
  std::int64_t sum;
  double price;
  std::string town;
  std::string name;
};

inline constexpr std::size_t kMostLines = 1'000'000;

/// The standard's own shuffle is another one where a size has 32 bits.
template <class Value, class Random>
void Shuffle(std::vector<Value>& values, Random random) {
  for (std::size_t i = values.size(); i > 1; --i) {
    std::swap(values[i - 1], values[static_cast<std::size_t>(random() % i)]);
  }
}

/// A million of them, in no order; the same everywhere.
inline const std::vector<Line>& Lines() {
  static const std::vector<Line> lines = [] {
    std::mt19937_64 random(1);
    std::vector<Line> made(kMostLines);
    for (std::size_t i = 0; i < kMostLines; ++i) {
      made[i] = {static_cast<std::int32_t>(i * 3),
                 static_cast<std::int32_t>(45'000 + random() % 365),
                 static_cast<std::int64_t>(random() % 100'000'000),
                 static_cast<double>(random() % 1000) / 8,
                 "orasul " + std::to_string(random() % 1000),
                 "Partener " + std::to_string(100'000 + random() % 900'000)};
    }
    Shuffle(made, random);
    return made;
  }();
  return lines;
}

}  // namespace bench
