#include "dataset/packet/Base64.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace kiv::packet {
namespace {

constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t kBlank = 64;
constexpr std::uint8_t kNoDigit = 65;

constexpr auto kValues = [] {
  std::array<std::uint8_t, 256> values{};
  values.fill(kNoDigit);
  for (std::size_t i = 0; i < kDigits.size(); ++i) {
    values[static_cast<unsigned char>(kDigits[i])] = static_cast<std::uint8_t>(i);
  }
  for (const char blank : {' ', '\t', '\r', '\n'}) {
    values[static_cast<unsigned char>(blank)] = kBlank;
  }
  return values;
}();

unsigned ByteAt(std::string_view bytes, std::size_t at) noexcept {
  return at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0U;
}

}  // namespace

void AppendBase64(std::string& out, std::string_view bytes) {
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    const unsigned three = ByteAt(bytes, at) << 16U | ByteAt(bytes, at + 1) << 8U | ByteAt(bytes, at + 2);
    const std::size_t digits = 1 + std::min<std::size_t>(3, bytes.size() - at);
    for (std::size_t i = 0; i < 4; ++i) {
      out += i < digits ? kDigits[three >> (18 - 6 * i) & 63U] : '=';
    }
  }
}

bool AppendFromBase64(std::string& out, std::string_view text) {
  unsigned bits = 0;
  unsigned count = 0;    // of digits since the last whole three bytes
  unsigned padding = 0;  // how many "=" have come
  for (const char character : text) {
    const std::uint8_t value = kValues[static_cast<unsigned char>(character)];
    if (value == kBlank) {
      continue;
    }
    if (character == '=') {
      if (count + ++padding > 4 || count < 2) {
        return false;
      }
      continue;
    }
    if (value == kNoDigit || padding > 0) {
      return false;
    }
    bits = bits << 6U | value;
    if (++count == 4) {
      out += static_cast<char>(bits >> 16U);
      out += static_cast<char>(bits >> 8U);
      out += static_cast<char>(bits);
      count = 0;
      bits = 0;
    }
  }
  if (count == 0) {
    return padding == 0;
  }
  // Two digits hold one byte and four bits, three hold two bytes and two bits, which are zero.
  const unsigned spare = count == 2 ? 4 : 2;
  if (count + padding != 4 || (bits & ((1U << spare) - 1)) != 0) {
    return false;
  }
  bits >>= spare;
  if (count == 3) {
    out += static_cast<char>(bits >> 8U);
  }
  out += static_cast<char>(bits);
  return true;
}

}  // namespace kiv::packet
