#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

#include "bench/DatasetLines.h"
#include "kivtools/dataset/Loader.h"
#include "kivtools/dataset/Packet.h"

/// The lines as a dataset, and as a packet in memory.
namespace bench {

using Bytes = std::vector<std::uint8_t>;

inline kiv::Dataset MakeDataset(std::size_t count, kiv::FieldFlags idFlags) {
  kiv::Dataset dataset("linii", {{"id", kiv::FieldType::Int32, idFlags},
                                 {"zi", kiv::FieldType::Date},
                                 {"suma", kiv::FieldType::Currency},
                                 {"pret", kiv::FieldType::Double},
                                 {"oras", kiv::FieldType::Text, 40},
                                 {"nume", kiv::FieldType::Text, 40}});
  kiv::Loader loader(dataset);
  for (const Line& line : std::span(Lines()).first(count)) {
    loader.Add({line.id, kiv::DateTime(line.day), kiv::Currency::FromRaw(line.sum), line.price, line.town, line.name});
  }
  loader.Finish();
  return dataset;
}

inline std::int64_t SumOf(const kiv::Dataset& dataset) {
  const kiv::FieldRef field = dataset.Field("suma");
  std::int64_t sum = 0;
  for (const kiv::RowId row : dataset.Rows()) {
    sum += dataset.GetCurrency(row, field).Raw();
  }
  return sum;
}

inline std::int64_t SumOfLines() {
  std::int64_t sum = 0;
  for (const Line& line : Lines()) {
    sum += line.sum;
  }
  return sum;
}

inline Bytes Written(const kiv::Dataset& dataset) {
  Bytes packet;
  kiv::WriteBinary(dataset, [&](auto bytes) { packet.insert(packet.end(), bytes.begin(), bytes.end()); });
  return packet;
}

/// Gives bytes as fast as they are taken.
inline kiv::PacketSource SourceOf(std::span<const std::uint8_t> bytes) {
  return [bytes](std::span<std::uint8_t> into) mutable {
    const std::size_t count = std::min(into.size(), bytes.size());
    std::memcpy(into.data(), bytes.data(), count);
    bytes = bytes.subspan(count);
    return count;
  };
}

inline kiv::Dataset Read(std::span<const std::uint8_t> packet) {
  return kiv::ReadBinary(SourceOf(packet));
}

}  // namespace bench
