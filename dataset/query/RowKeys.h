#pragma once

#include <memory>
#include <vector>

#include "dataset/query/OrderReader.h"
#include "dataset/query/TextLabels.h"

namespace kiv::query {

/// Packs the keys of rows for an order that is kept: like Pack(), but texts in a dictionary are numbers that tell them
/// apart. So one key says all that "town, day" compares.
class RowKeys {
 public:
  /// Both stay while it is used. Throws std::bad_alloc.
  RowKeys(const store::Contents& contents, const Order& order)
      : contents_(contents), order_(order), labels_(order.size()) {}

  /// Prepares the keys of that many rows anew; those that it gave do not compare with those that it gives now. Throws
  /// std::bad_alloc, and has not changed then.
  void Begin(std::size_t rows);
  /// Gives numbers to texts that have come since. Throws std::bad_alloc.
  void Extend();
  /// Whether rows still have the keys that they had.
  [[nodiscard]] bool AreValid() const noexcept;

  /// The keys of rows, whose values it reads by that reader where columns do not tell; `keys` are empty ones.
  void Pack(std::span<const std::uint32_t> rows, OrderReader& reader, std::span<PackedKey> keys) const noexcept;
  /// The key of cells for the first fields; codes do not count.
  [[nodiscard]] PackedKey OfCells(std::span<const store::Cell> cells) const noexcept;

 private:
  /// Packs the values of one field one by one.
  void PackRead(std::size_t place, std::span<const std::uint32_t> rows, OrderReader& reader,
                std::span<PackedKey> keys) const noexcept;
  void PutCell(PackedKey& key, const OrderField& by, const store::Cell& cell) const noexcept;

  const store::Contents& contents_;
  const Order& order_;
  /// By field of the order, null where texts have no numbers.
  std::vector<std::unique_ptr<TextLabels>> labels_;
};

}  // namespace kiv::query
