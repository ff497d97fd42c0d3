#include "kivtools/Errors.h"

#include <algorithm>

namespace kiv {
namespace {

/// A zero byte of a quoted input would end what() there and hide the reason after it; it becomes a blank.
std::string WithoutZeros(std::string message) {
  std::ranges::replace(message, '\0', ' ');
  return message;
}

}  // namespace

// The destructors are here, not in the header, so that each class has one vtable and one type identity in the whole
// process: a host can catch what the shared library throws.

Error::Error(const std::string& message) : std::runtime_error(WithoutZeros(message)) {}
Error::~Error() = default;

ConversionError::~ConversionError() = default;
DateEncodingError::~DateEncodingError() = default;
DivisionByZero::~DivisionByZero() = default;
InvalidCast::~InvalidCast() = default;
ListIndexError::~ListIndexError() = default;

AssertionFailure::AssertionFailure(std::string_view unit, std::int32_t line)
    : Error("Assertion failure"), unit_(unit), line_(line) {}
AssertionFailure::~AssertionFailure() = default;

OsError::OsError(std::int32_t code, const std::string& message) : Error(message), code_(code) {}
OsError::~OsError() = default;

}  // namespace kiv
