#include "kivtools/dataset/Collation.h"

#include <algorithm>
#include <cstddef>

#include "dataset/query/RomanianOrder.h"

namespace kiv {
namespace {

using Weights = std::array<std::uint32_t, 256>;

/// The weights of a text on one level, one after another; 0 behind the last.
class Level {
 public:
  Level(TextView text, const Weights& weights) noexcept
      : at_(text.data()), end_(text.data() + text.size()), weights_(weights) {}

  std::uint32_t Next() noexcept {
    while (left_ == 0) {
      if (at_ == end_) {
        return 0;
      }
      left_ = weights_[static_cast<unsigned char>(*at_++)];
    }
    const std::uint32_t weight = left_ & 0xFFU;
    left_ >>= 8U;
    return weight;
  }

 private:
  const char* at_;
  const char* end_;
  const Weights& weights_;
  std::uint32_t left_ = 0;
};

int CompareOn(const Weights& weights, TextView left, TextView right) noexcept {
  Level leftLevel(left, weights);
  Level rightLevel(right, weights);
  for (;;) {
    const std::uint32_t leftWeight = leftLevel.Next();
    const std::uint32_t rightWeight = rightLevel.Next();
    if (leftWeight != rightWeight) {
      return leftWeight < rightWeight ? -1 : 1;
    }
    if (leftWeight == 0) {
      return 0;
    }
  }
}

/// Eight bytes that compare as one number.
class Prefix {
 public:
  [[nodiscard]] bool IsFull() const noexcept { return bytes_ == sizeof value_; }
  void Put(std::uint32_t byte) noexcept {
    value_ = value_ << 8U | byte;
    ++bytes_;
  }
  [[nodiscard]] std::uint64_t Take() noexcept {
    while (!IsFull()) {
      Put(0);
    }
    return value_;
  }

 private:
  std::uint64_t value_ = 0;
  std::size_t bytes_ = 0;
};

/// Puts the weights of one level; a zero ends them, so that the shorter text comes first.
void PutLevel(Prefix& prefix, const Weights& weights, TextView text) noexcept {
  Level level(text, weights);
  for (std::uint32_t weight = 1; weight != 0 && !prefix.IsFull();) {
    weight = level.Next();
    prefix.Put(weight);
  }
}

}  // namespace

int CompareTexts(TextView left, TextView right, Collation collation) noexcept {
  if (collation == Collation::Binary) {
    return left.compare(right);
  }
  // What both begin with weighs the same on every level.
  const std::size_t shorter = std::min(left.size(), right.size());
  const auto differs = std::mismatch(left.begin(), left.begin() + static_cast<std::ptrdiff_t>(shorter), right.begin());
  const auto same = static_cast<std::size_t>(differs.first - left.begin());
  left.remove_prefix(same);
  right.remove_prefix(same);
  int order = CompareOn(romanian::kLetters, left, right);
  if (order == 0) {
    order = CompareOn(romanian::kMarks, left, right);
  }
  if (order == 0 && collation == Collation::Romanian) {
    order = CompareOn(romanian::kForms, left, right);
  }
  return order;
}

std::uint64_t CollationPrefix(TextView text, Collation collation) noexcept {
  Prefix prefix;
  if (collation == Collation::Binary) {
    for (const char byte : text.substr(0, sizeof(std::uint64_t))) {
      prefix.Put(static_cast<unsigned char>(byte));
    }
    return prefix.Take();
  }
  PutLevel(prefix, romanian::kLetters, text);
  PutLevel(prefix, romanian::kMarks, text);
  if (collation == Collation::Romanian) {
    PutLevel(prefix, romanian::kForms, text);
  }
  return prefix.Take();
}

}  // namespace kiv
