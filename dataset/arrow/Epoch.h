#pragma once

#include <cstdint>

#include "core/Calendar.h"

namespace kiv::arrow {

/// The days from 30.12.1899, from which datasets count, to 1.1.1970.
inline constexpr std::int32_t kEpochDay = 25'569;
inline constexpr std::int64_t kEpochMoment = std::int64_t{kEpochDay} * kMillisecondsPerDay;

}  // namespace kiv::arrow
