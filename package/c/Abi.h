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

/// A host's function has ended the operation that called it.
class HostFailure : public Error {
 public:
  using Error::Error;
};

/// Turns the exception in flight into this thread's last error; returns the negated code. Only within a catch block.
/// `operation` comes before the message of those that do not know it: ArgumentError, HostFailure,
/// std::bad_alloc.
std::int32_t ReportCurrentException(const char* operation) noexcept;

// The arguments of an operation, each checked under the name that it has there. To be used in the body that GiveText,
// GiveAnswer, GiveLength or Run is given: the exported function's own name comes before it in the message.
#define KIV_TEXT(text, length) (::kiv::c::TextArgument((text), (length), #text))
#define KIV_WIDE(wide, length) (::kiv::c::WideArgument((wide), (length), #wide))
#define KIV_LIST(texts, lengths, count) (::kiv::c::ListArgument((texts), (lengths), (count), #texts))
#define KIV_REQUIRED(pointer) (::kiv::c::PointerArgument((pointer), #pointer))
#define KIV_BUFFER(buffer, capacity) (::kiv::c::BufferArgument((buffer), (capacity), #buffer))

/// The Text argument `name`. Throws ArgumentError for a null pointer with a length.
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

/// The object that a pointer argument leads to. Throws ArgumentError for null.
template <class Value>
Value& PointerArgument(Value* value, const char* name) {
  if (value == nullptr) {
    throw ArgumentError(Text(name) + ": pointer nul");
  }
  return *value;
}

/// Throws ArgumentError where a buffer that has room has no address.
template <class Unit>
void BufferArgument(const Unit* buffer, std::size_t capacity, const char* name) {
  if (capacity > 0) {
    PointerArgument(buffer, name);
  }
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

/// Runs an operation that gives Text, or UTF-16 for a buffer of 16-bit units, and copies it out. Here and below, `name`
/// is the exported function's, of itself.
template <class Unit, class Operation>
KivLength GiveText(Unit* buffer, std::size_t capacity, Operation&& operation,
                   const char* name = __builtin_FUNCTION()) noexcept {
  try {
    KIV_BUFFER(buffer, capacity);
    return CopyOut(std::forward<Operation>(operation)(), buffer, capacity);
  } catch (...) {
    return ReportCurrentException(name);
  }
}

/// Runs an operation that gives a length or a count.
template <class Operation>
KivLength GiveLength(Operation&& operation, const char* name = __builtin_FUNCTION()) noexcept {
  try {
    return static_cast<KivLength>(std::forward<Operation>(operation)());
  } catch (...) {
    return ReportCurrentException(name);
  }
}

/// Runs an operation that gives yes or no.
template <class Operation>
KivAnswer GiveAnswer(Operation&& operation, const char* name = __builtin_FUNCTION()) noexcept {
  try {
    return std::forward<Operation>(operation)() ? 1 : 0;
  } catch (...) {
    return ReportCurrentException(name);
  }
}

/// Runs an operation that gives nothing, or stores its results itself as its last step.
template <class Operation>
KivStatus Run(Operation&& operation, const char* name = __builtin_FUNCTION()) noexcept {
  try {
    std::forward<Operation>(operation)();
    return KIV_OK;
  } catch (...) {
    return ReportCurrentException(name);
  }
}

}  // namespace kiv::c
