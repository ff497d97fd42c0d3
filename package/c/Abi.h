#pragma once

#include <algorithm>
#include <concepts>
#include <cstring>
#include <exception>
#include <iterator>
#include <utility>

#include "kivtools/Types.h"
#include "kivtools/c/Base.h"

/// What every function of the C interface does around its operation.
namespace kiv::c {

/// An argument that the C interface itself refuses: a null pointer, an unknown enumeration value.
class ArgumentError : public Error {
 public:
  using Error::Error;
};

/// Turns the exception in flight into this thread's last error; returns the negated code. Only within a catch block.
std::int32_t ReportCurrentException() noexcept;

/// The Text argument `name` of `operation`. Throws ArgumentError for a null pointer with a length.
inline TextView TextArgument(const char* text, std::size_t length, const char* name) {
  if (text == nullptr && length != 0) {
    throw ArgumentError(Text(name) + ": pointer nul");
  }
  return length == KIV_ZERO_ENDED ? TextView(text) : TextView(text, text == nullptr ? 0 : length);
}

/// The UTF-16 argument `name`, as TextArgument. The copy is what lets a host hand over its own 16-bit units.
inline WideText WideArgument(const std::uint16_t* wide, std::size_t length, const char* name) {
  if (wide == nullptr && length != 0) {
    throw ArgumentError(Text(name) + ": pointer nul");
  }
  if (length == KIV_ZERO_ENDED) {
    length = static_cast<std::size_t>(std::ranges::find(wide, std::unreachable_sentinel, 0) - wide);
  }
  return {wide, wide + length};
}

/// The list of Text argument `name`: `count` texts with their lengths, all zero-terminated where `lengths` is null.
inline StringList ListArgument(const char* const* texts, const std::size_t* lengths, std::size_t count,
                               const char* name) {
  if (texts == nullptr && count != 0) {
    throw ArgumentError(Text(name) + ": pointer nul");
  }
  StringList list;
  list.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    list.emplace_back(TextArgument(texts[i], lengths == nullptr ? KIV_ZERO_ENDED : lengths[i], name));
  }
  return list;
}

/// The object behind a pointer argument. Throws ArgumentError for null.
template <class Value>
Value& PointerArgument(Value* value, const char* name) {
  if (value == nullptr) {
    throw ArgumentError(Text(name) + ": pointer nul");
  }
  return *value;
}

/// Copies `text` into the caller's buffer as far as it fits, zero-terminated; returns its whole length.
template <class Unit, class View>
KivLength CopyOut(const View& text, Unit* buffer, std::size_t capacity) noexcept {
  static_assert(sizeof(*text.data()) == sizeof(Unit));
  if (capacity > 0) {
    const std::size_t copied = text.size() < capacity ? text.size() : capacity - 1;
    if (copied > 0) {
      std::memcpy(buffer, text.data(), copied * sizeof(Unit));
    }
    buffer[copied] = 0;
  }
  return static_cast<KivLength>(text.size());
}

/// Runs an operation that gives Text, or UTF-16 for a buffer of 16-bit units, and copies it out.
template <class Unit, class Operation>
KivLength GiveText(Unit* buffer, std::size_t capacity, Operation&& operation) noexcept {
  try {
    if (capacity > 0) {
      PointerArgument(buffer, "buffer");
    }
    return CopyOut(std::forward<Operation>(operation)(), buffer, capacity);
  } catch (...) {
    return ReportCurrentException();
  }
}

/// Runs an operation that gives yes or no.
template <class Operation>
KivAnswer GiveAnswer(Operation&& operation) noexcept {
  try {
    return std::forward<Operation>(operation)() ? 1 : 0;
  } catch (...) {
    return ReportCurrentException();
  }
}

/// Runs an operation that gives nothing, or stores its results itself as its last step.
template <class Operation>
KivStatus Run(Operation&& operation) noexcept {
  try {
    std::forward<Operation>(operation)();
    return KIV_OK;
  } catch (...) {
    return ReportCurrentException();
  }
}

}  // namespace kiv::c
