#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "kivtools/Types.h"

namespace kiv {

/// How many codes TestCNP() has refused and passed since load. Statistics only: counting never slows a check down with
/// a lock, so calls that overlap may lose a count.
extern std::atomic<std::uint32_t> CnpFailedCount;
extern std::atomic<std::uint32_t> CnpPassedCount;

/// What the check of a personal numeric code and the texts made from one share.
namespace cnp {

/// Where the digits of the birth date begin.
inline constexpr std::size_t kMonthAt = 3;
inline constexpr std::size_t kDayAt = 5;

constexpr std::uint32_t Digit(char character) {
  return static_cast<std::uint32_t>(static_cast<unsigned char>(character)) - '0';  // huge below '0'
}

/// The number that two digits of a code make.
constexpr std::int32_t TwoDigits(TextView code, std::size_t at) {
  return static_cast<std::int32_t>(Digit(code[at]) * 10 + Digit(code[at + 1]));
}

}  // namespace cnp
}  // namespace kiv
