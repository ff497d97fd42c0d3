#pragma once

#include <compare>
#include <cstdint>
#include <limits>
#include <optional>

namespace kiv {

/// A signed integer of 128 bits, for what passes through a calculation in 64 bits: products, and sums of many terms. It
/// is made of halves because 32-bit compilers have no such type.
class Int128 {
 public:
  constexpr Int128() = default;
  // Implicit, as between the built-in integers.
  constexpr Int128(std::int64_t value) noexcept  // NOLINT
      : low_(static_cast<std::uint64_t>(value)), high_(value < 0 ? ~std::uint64_t{0} : 0) {}

  /// The whole product.
  [[nodiscard]] static constexpr Int128 Product(std::int64_t left, std::int64_t right) noexcept {
    const Int128 product = OfMagnitudes(Magnitude(left), Magnitude(right));
    return (left < 0) != (right < 0) ? -product : product;
  }

  [[nodiscard]] constexpr bool IsNegative() const noexcept { return high_ >> 63U != 0; }
  /// The value where 64 bits hold it.
  [[nodiscard]] constexpr std::optional<std::int64_t> In64Bits() const noexcept {
    const auto value = static_cast<std::int64_t>(low_);
    return Int128(value) == *this ? std::optional(value) : std::nullopt;
  }

  constexpr Int128& operator+=(const Int128& other) noexcept {
    low_ += other.low_;
    high_ += other.high_ + (low_ < other.low_ ? 1 : 0);
    return *this;
  }
  constexpr Int128& operator-=(const Int128& other) noexcept { return *this += -other; }
  constexpr Int128 operator-() const noexcept {
    Int128 negated;
    negated.low_ = 0 - low_;
    negated.high_ = ~high_ + (low_ == 0 ? 1 : 0);
    return negated;
  }
  friend constexpr Int128 operator+(Int128 left, const Int128& right) noexcept { return left += right; }
  friend constexpr Int128 operator-(Int128 left, const Int128& right) noexcept { return left -= right; }
  friend constexpr bool operator==(const Int128&, const Int128&) = default;
  friend constexpr std::strong_ordering operator<=>(const Int128& left, const Int128& right) noexcept {
    const auto order = static_cast<std::int64_t>(left.high_) <=> static_cast<std::int64_t>(right.high_);
    return order != 0 ? order : left.low_ <=> right.low_;
  }

  /// The quotient by a divisor other than zero, rounded to the nearest, halves to even; empty where 64 bits do not hold
  /// it. Example: `Int128(25).DividedBy(10)` is 2, `Int128(-35).DividedBy(10)` is -4.
  [[nodiscard]] constexpr std::optional<std::int64_t> DividedBy(std::int64_t divisor) const noexcept {
    const Int128 dividend = IsNegative() ? -*this : *this;
    const std::uint64_t by = Magnitude(divisor);
    if (dividend.high_ >= by) {
      return std::nullopt;
    }
    std::uint64_t rest = dividend.high_;
    std::uint64_t quotient = dividend.low_;
    if (rest == 0) {
      rest = quotient % by;
      quotient /= by;
    } else {
      for (int bit = 0; bit < 64; ++bit) {
        const bool carries = rest >> 63U != 0;
        rest = rest << 1U | quotient >> 63U;
        quotient <<= 1U;
        if (carries || rest >= by) {
          rest -= by;
          quotient |= 1U;
        }
      }
    }
    const std::uint64_t missing = by - rest;
    if (rest > missing || (rest == missing && quotient % 2 != 0)) {
      if (++quotient == 0) {
        return std::nullopt;
      }
    }
    const bool isNegative = IsNegative() != (divisor < 0);
    constexpr std::uint64_t kMost = std::numeric_limits<std::int64_t>::max();
    if (quotient > kMost + (isNegative ? 1 : 0)) {
      return std::nullopt;
    }
    return static_cast<std::int64_t>(isNegative ? 0 - quotient : quotient);
  }

 private:
  static constexpr std::uint64_t Magnitude(std::int64_t value) noexcept {
    return value < 0 ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
  }
  static constexpr Int128 OfMagnitudes(std::uint64_t left, std::uint64_t right) noexcept {
    const std::uint64_t leftLow = left & 0xFFFF'FFFFU;
    const std::uint64_t leftHigh = left >> 32U;
    const std::uint64_t rightLow = right & 0xFFFF'FFFFU;
    const std::uint64_t rightHigh = right >> 32U;
    const std::uint64_t lows = leftLow * rightLow;
    const std::uint64_t middle = leftHigh * rightLow + (lows >> 32U);
    const std::uint64_t other = leftLow * rightHigh + (middle & 0xFFFF'FFFFU);
    Int128 product;
    product.low_ = other << 32U | (lows & 0xFFFF'FFFFU);
    product.high_ = leftHigh * rightHigh + (middle >> 32U) + (other >> 32U);
    return product;
  }

  std::uint64_t low_ = 0;
  std::uint64_t high_ = 0;
};

}  // namespace kiv
