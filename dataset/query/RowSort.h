#pragma once

#include <vector>

#include "dataset/query/Order.h"

namespace kiv::query {

/// The rows that are not deleted, in the order of their numbers. Throws std::bad_alloc.
std::vector<std::uint32_t> PresentRows(const store::Contents& contents);
/// Puts rows, which are in the order of their numbers, into that order. Needs up to 32 bytes a row meanwhile. Throws
/// std::bad_alloc, and FilterError for a row in which a calculated field of the order has no value.
void SortRows(const store::Contents& contents, const Order& order, std::vector<std::uint32_t>& rows);

}  // namespace kiv::query
