#pragma once

#include <vector>

#include "dataset/query/Order.h"

namespace kiv::query {

/// The rows that are not deleted, in that order. Needs up to 32 bytes a row meanwhile. Throws std::bad_alloc.
std::vector<std::uint32_t> SortedRows(const store::Contents& contents, const Order& order);

}  // namespace kiv::query
