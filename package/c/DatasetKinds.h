#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <utility>
#include <variant>

#include "package/c/DatasetHandles.h"

/// Values that a function of the C interface gives as one kind: of rows, and of the tickets of a delta.
namespace kiv::c {

static_assert(sizeof(KivGuid) == sizeof(Guid));

/// How C has a kind of value.
template <class Number>
Number ForC(Number value) {
  return value;
}
inline std::int64_t ForC(Currency value) {
  return value.Raw();
}
inline double ForC(DateTime value) {
  return value.Days();
}
inline KivGuid ForC(const Guid& value) {
  return std::bit_cast<KivGuid>(value);
}

/// Stores a value of one kind; false for null.
template <class Kind, class Out>
bool Store(const Value& value, Out& out) {
  if (std::holds_alternative<Null>(value)) {
    return false;
  }
  const Kind* const held = std::get_if<Kind>(&value);
  if (held == nullptr) {
    throw InvalidCast("field: valoarea este de alt fel");
  }
  out = static_cast<Out>(ForC(*held));
  return true;
}

/// Runs an operation that gives a value, which is to be of one kind.
template <class Kind, class Out, class Operation>
KivAnswer GiveValue(Out* value, Operation&& operation, const char* name = __builtin_FUNCTION()) noexcept {
  return GiveAnswer(
      [&] {
        Out& result = KIV_REQUIRED(value);
        return Store<Kind>(operation(), result);
      },
      name);
}

/// What a delta holds of a text or of bytes, empty for null.
template <class Kind>
Kind BytesOf(Value value) {
  if (std::holds_alternative<Null>(value)) {
    return {};
  }
  Kind* const held = std::get_if<Kind>(&value);
  if (held == nullptr) {
    throw InvalidCast("field: valoarea este de alt fel");
  }
  return std::move(*held);
}

/// Copies bytes, of which there may be more than fit; returns how many there are.
inline std::size_t CopyBytes(BytesView bytes, std::uint8_t* buffer, std::size_t capacity) noexcept {
  std::copy_n(bytes.begin(), std::min(bytes.size(), capacity), buffer);
  return bytes.size();
}

}  // namespace kiv::c
