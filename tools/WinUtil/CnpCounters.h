#pragma once

#include <atomic>
#include <cstdint>

namespace kiv {

/// How many codes TestCNP() has refused and passed since load. Statistics only: counting never slows a check down with
/// a lock, so calls that overlap may lose a count.
extern std::atomic<std::uint32_t> CnpFailedCount;
extern std::atomic<std::uint32_t> CnpPassedCount;

}  // namespace kiv
