#include "core/Numbers.h"

#include <system_error>

namespace kiv {
namespace {

template <class Integer>
Integer ToInteger(TextView text) {
  const char* at = text.data();
  const char* const end = at + text.size();
  while (at != end && *at == ' ') {
    ++at;
  }
  const bool plus = at != end && *at == '+';
  if (plus) {
    ++at;
  }
  Integer value = 0;
  const auto [parsed, error] = std::from_chars(at, end, value);
  // from_chars itself takes a "-", which must not follow a "+".
  if (error != std::errc() || parsed != end || (plus && *at == '-')) {
    RefuseInteger(text);
  }
  return value;
}

}  // namespace

void RefuseInteger(TextView text) {
  throw ConversionError("\"" + Text(text) + "\" nu este un numar intreg");
}

std::int32_t ToInt32(TextView text) {
  return ToInteger<std::int32_t>(text);
}

std::int64_t ToInt64(TextView text) {
  return ToInteger<std::int64_t>(text);
}

}  // namespace kiv
