#pragma once

#include <cstddef>
#include <cstdint>

namespace kiv {

/// Watches the allocations of this thread; a wanted one fails. The test program's operator new asks it.
class Allocations {
 public:
  static constexpr std::uint64_t kNever = ~std::uint64_t{0};
  /// From now on allocation number `failing`, counted from 0, throws std::bad_alloc, and so do all after it.
  static void FailFrom(std::uint64_t failing) noexcept;
  /// None fails any more. Returns whether one has failed.
  static bool Stop() noexcept;
  /// Begins to look for the largest.
  static void WatchLargest() noexcept;
  /// The bytes of the largest since.
  static std::size_t Largest() noexcept;
};

}  // namespace kiv
