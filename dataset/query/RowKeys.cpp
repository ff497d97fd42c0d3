#include "dataset/query/RowKeys.h"

#include <algorithm>

#include "dataset/query/CalculatedColumns.h"
#include "dataset/query/Elements.h"

namespace kiv::query {

using store::Cell;

void RowKeys::Begin(std::size_t rows) {
  std::vector<std::unique_ptr<TextLabels>> labels(order_.size());
  for (std::size_t i = 0; i < order_.size(); ++i) {
    const std::uint16_t field = order_[i].field;
    if (field >= contents_.columns.size()) {
      continue;
    }
    const store::Column& column = contents_.columns[field];
    // For a few rows it costs less to look at their own texts.
    if (store::TraitsOf(column.type).storage == store::Storage::Texts && column.texts.HasDictionary() &&
        column.texts.EntryCount() <= rows) {
      labels[i] = std::make_unique<TextLabels>(contents_, field, order_[i].collation);
      labels[i]->Extend();
    }
  }
  labels_ = std::move(labels);
}

void RowKeys::Extend() {
  for (const auto& labels : labels_) {
    if (labels != nullptr) {
      labels->Extend();
    }
  }
}

bool RowKeys::AreValid() const noexcept {
  return std::ranges::all_of(labels_, [](const auto& labels) { return labels == nullptr || labels->HasDictionary(); });
}

void RowKeys::Pack(std::span<const std::uint32_t> rows, OrderReader& reader, std::span<PackedKey> keys) const noexcept {
  for (std::size_t place = 0; place < order_.size(); ++place) {
    const OrderField& by = order_[place];
    if (by.field >= contents_.columns.size()) {
      PackRead(place, rows, reader, keys);
      continue;
    }
    const store::Column& column = contents_.columns[by.field];
    const auto put = [&](std::size_t i, auto element, auto&& bitsOf) {
      if (column.IsNull(rows[i])) {
        keys[i].PutNull(by);
      } else {
        keys[i].Put(by, bitsOf(element));
      }
    };
    if (const TextLabels* const labels = labels_[place].get()) {
      ForEachElement<std::uint32_t>(column, rows, [&](std::size_t i, std::uint32_t code) {
        put(i, code, [labels](std::uint32_t of) { return labels->Of(of); });
      });
    } else if (!ForEachInteger(column, rows, [&](std::size_t i, auto value) {
                 put(i, value, [](auto of) { return OrderedBitsOf(of); });
               })) {
      PackRead(place, rows, reader, keys);
    }
  }
}

void RowKeys::PackRead(std::size_t place, std::span<const std::uint32_t> rows, OrderReader& reader,
                       std::span<PackedKey> keys) const noexcept {
  const OrderField& by = order_[place];
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (keys[i].isExact) {
      PutCell(keys[i], by, reader.TryRead(place, rows[i]));
    }
  }
}

PackedKey RowKeys::OfCells(std::span<const Cell> cells) const noexcept {
  PackedKey key;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (labels_[i] != nullptr && !cells[i].isNull) {
      key.Put(order_[i], labels_[i]->OfText(cells[i].bytes));
    } else {
      PutCell(key, order_[i], cells[i]);
    }
  }
  return key;
}

void RowKeys::PutCell(PackedKey& key, const OrderField& by, const Cell& cell) const noexcept {
  if (cell.isNull) {
    key.PutNull(by);
  } else {
    key.Put(by, OrderedBitsOf(FieldAt(contents_, by.field).type, by.collation, cell));
  }
}

}  // namespace kiv::query
