#pragma once

#include <cstddef>

namespace kiv::avl {

/// Gives the index zero-filled memory, null where there is none; released with std::free. Asked once for each block
/// and each growth of the block directory, never for a node. Tests put a failing one in its place.
extern void* (*allocate_zeroed)(std::size_t count, std::size_t bytes);

}  // namespace kiv::avl
