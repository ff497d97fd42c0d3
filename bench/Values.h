#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string_view>
#include <vector>

/// What the benchmarks share: values from fixed seeds, and the check of a result before it is timed.
namespace bench {

/// How many different values a benchmark runs through; enough to keep the branch predictor honest.
inline constexpr std::size_t kValues = 4096;

/// Numbers of mixed lengths: uniform in their count of digits, below `limit`.
inline std::vector<std::int64_t> MixedNumbers(std::int64_t limit, std::uint32_t seed) {
  std::mt19937_64 random(seed);
  std::vector<std::int64_t> ceilings;
  for (std::int64_t ceiling = 10; ceiling < limit; ceiling *= 10) {
    ceilings.push_back(ceiling);
  }
  ceilings.push_back(limit);
  std::vector<std::int64_t> numbers(kValues);
  for (std::int64_t& number : numbers) {
    number = static_cast<std::int64_t>(
        random() % static_cast<std::uint64_t>(ceilings[static_cast<std::size_t>(random() % ceilings.size())]));
  }
  return numbers;
}

/// Stops the run if a competitor's result is not what it has to be.
inline void Require(bool holds, std::string_view what) {
  if (!holds) {
    std::fprintf(stderr, "bench: wrong result: %.*s\n", static_cast<int>(what.size()), what.data());
    std::exit(1);
  }
}

/// The next value of a ring.
template <class Value>
class Ring {
 public:
  explicit Ring(const std::vector<Value>& values) : values_(values) {}
  const Value& Next() { return values_[at_++ % values_.size()]; }

 private:
  const std::vector<Value>& values_;
  std::size_t at_ = 0;
};

}  // namespace bench
