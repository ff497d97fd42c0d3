#include "dataset/query/OrderReader.h"

#include <algorithm>

#include "dataset/query/CalculatedColumns.h"
#include "dataset/query/Lookup.h"

namespace kiv::query {

using store::Cell;

OrderReader::Calculated::Calculated(std::shared_ptr<const Tree> calculated)
    : tree(std::move(calculated)), evaluator(*tree), reads(FieldsOf(*tree)) {}

OrderReader::OrderReader(const store::Contents& contents, const Order& order) : contents_(contents), order_(order) {
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (const CalculatedColumn* const column = CalculatedAt(contents, order[i].field)) {
      columns_.resize(order.size());
      columns_[i] = std::make_unique<Calculated>(column->GetTree());
    }
  }
}

Cell OrderReader::TryCalculate(std::size_t place, std::uint32_t row) noexcept {
  try {
    return Read(place, row);
  } catch (...) {
    hasFailed_ = true;
    return {};
  }
}

bool OrderReader::Reads(std::uint16_t field) const noexcept {
  return std::ranges::any_of(order_, [field](const OrderField& by) { return by.field == field; }) ||
         std::ranges::any_of(columns_, [field](const auto& column) {
           return column != nullptr && std::ranges::find(column->reads, field) != column->reads.end();
         });
}

std::uint64_t OrderReader::Version() const noexcept {
  std::uint64_t version = 0;
  for (const auto& column : columns_) {
    version += column == nullptr ? 0 : LookupVersion(*column->tree);
  }
  return version;
}

}  // namespace kiv::query
