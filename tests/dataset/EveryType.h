#pragma once

#include <random>
#include <string>

#include "dataset/store/BlockLoader.h"
#include "kivtools/dataset/Loader.h"

namespace kiv {

using namespace kiv::literals;  // NOLINT: the header is the tests' own

/// A field of each type, with flags and defaults of each kind.
inline const Schema& EveryType() {
  static const Schema schema({{"id", FieldType::AutoInc, kKey},
                              {"i2", FieldType::Int16, kNoCheck, std::int64_t{-7}},
                              {"i4", FieldType::Int32, kReadOnly},
                              {"i8", FieldType::Int64},
                              {"c", FieldType::Currency, FieldFlags::None, 12.5_lei},
                              {"f", FieldType::Double},
                              {"d", FieldType::Date, FieldFlags::None, DateTime(45000)},
                              {"t", FieldType::Time},
                              {"m", FieldType::DateTime},
                              {"s", FieldType::Text, 40, kRequired, Text("nimic")},
                              {"x", FieldType::Text},
                              {"w", FieldType::WideText, 0, FieldFlags::None, WideText(u"\u021b")},
                              {"b", FieldType::Boolean},
                              {"g", FieldType::Guid, FieldFlags::None, Guid{1, 2, 3, {4}}},
                              {"n", FieldType::Memo},
                              {"p", FieldType::Blob, kCheck}});
  return schema;
}

/// An empty dataset whose texts have no dictionaries.
inline Dataset WithHeaps() {
  store::BlockLoader loader("arhiva", EveryType());
  for (const std::size_t field : {9U, 10U, 11U}) {
    loader.UseHeap(field);
  }
  return Dataset(loader.Finish());
}

inline void AddRows(Dataset& dataset, std::uint32_t count, bool withNulls = true) {
  const auto chosen = [&](std::uint32_t i, std::uint32_t every, ValueView value) {
    return withNulls && i % every == 0 ? ValueView() : value;
  };
  Loader loader(dataset);
  for (std::uint32_t i = 0; i < count; ++i) {
    const Text text = "oras " + std::to_string(i % 300);
    const Bytes bytes(i % 9, static_cast<std::uint8_t>(i));
    const std::u16string wide(i % 5, u'\u0103');
    loader.Add({std::int64_t{i} - 10, chosen(i, 3, i % 200), chosen(i, 4, i * 1000), chosen(i, 5, i * (1LL << 40)),
                chosen(i, 6, Currency::FromRaw(i % 2 == 0 ? 5 : -5)), chosen(i, 7, i * 0.5), chosen(i, 8, DateTime(i)),
                chosen(i, 9, DateTime(0.25)), chosen(i, 10, DateTime(i + 0.5)), text, chosen(i, 2, text),
                chosen(i, 3, wide), chosen(i, 11, i % 3 == 0), chosen(i, 4, Guid{i, 1, 2, {3}}), chosen(i, 100, text),
                chosen(i, 100, bytes)});
  }
  loader.Finish();
}

/// Changes of every kind, on rows of every block.
inline void Edit(Dataset& dataset, std::uint32_t seed) {
  std::mt19937 random(seed);
  for (int i = 0; i < 200; ++i) {
    const RowId row{static_cast<std::uint32_t>(random() % dataset.GetContents().rowCount)};
    if (!dataset.Exists(row) || dataset.State(row) == RowState::Deleted) {
      if (dataset.Exists(row)) {
        dataset.Changes().RevertRow(row);
      }
      continue;
    }
    switch (random() % 6) {
      case 0:
        dataset.Delete(row);
        break;
      case 1:
        dataset.Insert({{"s", "nou " + std::to_string(i)}, {"n", Text(static_cast<std::size_t>(i), 'n')}});
        break;
      case 2:
        dataset.Update(row, {{"i2", Null{}}, {"g", Guid{9, 9, 9, {static_cast<std::uint8_t>(i)}}}, {"b", i % 2 == 0}});
        break;
      case 3:
        dataset.Update(row, {{"x", Text(static_cast<std::size_t>(i) * 40, 'x')}, {"w", u"\u0218i"}, {"n", "alt"}});
        break;
      default:
        dataset.Update(row, {{"c", Currency::FromRaw(i)}, {"s", "altul " + std::to_string(i)}, {"p", Null{}}});
    }
  }
}

}  // namespace kiv
