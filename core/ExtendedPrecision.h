#pragma once

#include <cfenv>
#include <cstdint>

namespace kiv {

/// While it lives, `long double` arithmetic keeps its full mantissa (64 bits on x86) and rounds to the nearest, halves
/// to even, whatever the caller has set: 32-bit Windows threads start with 53 bits, and some hosts let the processor
/// trap. Afterwards precision and traps are the caller's again; the rounding mode stays to-nearest.
///
/// Operands must be read and results written as volatile, so that the arithmetic stays between the two ends.
#if defined(__i386__) || defined(__x86_64__)
class ExtendedPrecision {
 public:
  // By the processor's own instructions: the run-time library of 32-bit Windows takes microseconds for the mode.
  ExtendedPrecision() noexcept {
    constexpr std::uint32_t kSseRounding = 0x6000;
    constexpr std::uint16_t kX87Rounding = 0x0C00;
    constexpr std::uint16_t kFullMantissaNearestNoTraps = 0x037F;
    std::uint32_t sse = 0;
    asm volatile("stmxcsr %0" : "=m"(sse));
    sse &= ~kSseRounding;
    asm volatile("ldmxcsr %0" : : "m"(sse));
    asm volatile("fnstcw %0" : "=m"(callers_));
    callers_ = static_cast<std::uint16_t>(callers_ & ~kX87Rounding);
    asm volatile("fldcw %0" : : "m"(kFullMantissaNearestNoTraps));
  }
  ~ExtendedPrecision() { asm volatile("fldcw %0" : : "m"(callers_)); }
  ExtendedPrecision(const ExtendedPrecision&) = delete;
  ExtendedPrecision& operator=(const ExtendedPrecision&) = delete;

 private:
  std::uint16_t callers_ = 0;
};
#else
class ExtendedPrecision {
 public:
  ExtendedPrecision() noexcept { std::fesetround(FE_TONEAREST); }
};
#endif

}  // namespace kiv
