#include "core/Numbers.h"

#include <cstring>
#include <system_error>

namespace kiv {
namespace {

/// ".000" to ".999": a group of three digits with the dot before it.
constexpr auto kDottedGroups = [] {
  std::array<std::array<char, 4>, 1000> groups{};
  for (std::size_t i = 0; i < groups.size(); ++i) {
    groups[i] = {'.', static_cast<char>('0' + i / 100), static_cast<char>('0' + i / 10 % 10),
                 static_cast<char>('0' + i % 10)};
  }
  return groups;
}();

const char* DottedGroup(std::uint64_t belowThousand) {
  return kDottedGroups[static_cast<std::size_t>(belowThousand)].data();
}

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

char* WriteGroupedBefore(char* end, std::uint64_t value) noexcept {
  while (value >= 1000) {
    end -= 4;
    std::memcpy(end, DottedGroup(value % 1000), 4);
    value /= 1000;
  }
  const std::size_t digits = value >= 100 ? 3 : value >= 10 ? 2 : 1;
  const char* const group = DottedGroup(value);
  for (std::size_t i = 0; i < digits; ++i) {
    *--end = group[3 - i];
  }
  return end;
}

void WriteFourDigitsBefore(char* end, std::uint32_t value) noexcept {
  std::memcpy(end - 3, DottedGroup(value % 1000) + 1, 3);
  end[-4] = static_cast<char>('0' + value / 1000 % 10);
}

}  // namespace kiv
