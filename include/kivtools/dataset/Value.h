/// @file
/// Value and ValueView: what a field of a dataset holds, owned and borrowed.
#pragma once

#include <concepts>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "kivtools/Types.h"

namespace kiv {

/// Bytes without a meaning of their own.
using Bytes = std::vector<std::uint8_t>;
/// Borrowed bytes.
using BytesView = std::span<const std::uint8_t>;

/// A value of a field. Integer fields of every width hold `std::int64_t`, fields of date and time DateTime.
/// Example: `linii.Get(row, "suma") == Value(1500_lei)`.
using Value = std::variant<Null, bool, std::int64_t, double, Currency, DateTime, Text, WideText, Guid, Bytes>;

/// A borrowed value, which anything that a field can hold turns into: it lives as long as what it was made from.
///
///     linii.Set(row, suma, 1500_lei);
///     linii.Set(row, partener, Null{});
class ValueView {
 public:
  using Held = std::variant<Null, bool, std::int64_t, double, Currency, DateTime, TextView, std::u16string_view, Guid,
                            BytesView>;

  // Implicit all of them, so that a call reads like an assignment.
  constexpr ValueView(Null value = {}) noexcept : held_(value) {}  // NOLINT
  template <std::same_as<bool> Bool>
  constexpr ValueView(Bool value) noexcept : held_(value) {}  // NOLINT
  template <std::integral Integer>
  requires(!std::same_as<Integer, bool> &&
           (std::signed_integral<Integer> || sizeof(Integer) < 8)) constexpr ValueView(Integer value) noexcept
      : held_(static_cast<std::int64_t>(value)) {}                   // NOLINT
  constexpr ValueView(double value) noexcept : held_(value) {}       // NOLINT
  constexpr ValueView(Currency value) noexcept : held_(value) {}     // NOLINT
  constexpr ValueView(DateTime value) noexcept : held_(value) {}     // NOLINT
  constexpr ValueView(const Guid& value) noexcept : held_(value) {}  // NOLINT
  template <class Characters>
  requires std::convertible_to<const Characters&, TextView>
  constexpr ValueView(const Characters& value) noexcept : held_(static_cast<TextView>(value)) {}  // NOLINT
  template <class Characters>
  requires std::convertible_to<const Characters&, std::u16string_view>
  constexpr ValueView(const Characters& value) noexcept : held_(static_cast<std::u16string_view>(value)) {}  // NOLINT
  constexpr ValueView(BytesView value) noexcept : held_(value) {}                                            // NOLINT
  ValueView(const Bytes& value) noexcept : held_(BytesView(value)) {}                                        // NOLINT
  ValueView(const Value& value) noexcept                                                                     // NOLINT
      : held_(std::visit([](const auto& held) { return ValueView(held).held_; }, value)) {}

  /// What is held. Example: `std::get<Currency>(ValueView(5_lei).Get())` is 5 lei.
  [[nodiscard]] constexpr const Held& Get() const noexcept { return held_; }
  /// Whether it is the absent value. Example: true for `ValueView(Null{})`.
  [[nodiscard]] constexpr bool IsNull() const noexcept { return held_.index() == 0; }

 private:
  Held held_;
};

}  // namespace kiv
