#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "dataset/packet/KeyChanges.h"
#include "dataset/packet/PlainRows.h"
#include "dataset/packet/XmlElements.h"
#include "dataset/packet/XmlFields.h"
#include "dataset/packet/XmlValues.h"
#include "dataset/store/BlockLoader.h"

namespace kiv::packet {

/// Reads the rows of a dataset from XML: what they are, and by their states and <was> what they were.
class XmlRows {
 public:
  XmlRows(XmlElements& in, const XmlFields& fields, const ReadLimits& limits, store::BlockLoader& loader);

  /// Reads all of <rows>, which has begun.
  void Read();
  /// Makes the change log of what the rows were. Throws Error.
  void AddRecordsInOrder();

 private:
  using Event = XmlPull::Event;
  using Cell = store::Cell;

  [[nodiscard]] std::size_t FieldOf(std::string_view attribute);
  void TakePlainRows();
  void ReadRow();
  void TakeValue(XmlRowValues& values, std::size_t field, std::string_view text, bool isBase64);
  store::StoredState TakeRowAttributes();
  void ReadElements(store::StoredState state);
  void ReadBytes(XmlRowValues& values);
  void ReadOriginals();
  void TakeNulls(std::string_view names);
  void AddRow(store::StoredState state);
  void AddOriginals(std::uint32_t row);
  void AddChange(ChangeKind kind, std::uint32_t row, std::vector<store::BlockLoader::OldValue>& old);
  [[nodiscard]] std::string KeyOf(std::span<const Cell> cells) const;
  void Spend(std::uint64_t bytes);

  XmlElements& in_;
  const XmlFields& fields_;
  const ReadLimits& limits_;
  store::BlockLoader& loader_;
  PlainRows plain_;
  std::uint64_t bytesLeft_;
  std::size_t nextField_ = 0;
  std::uint64_t rows_ = 0;
  bool hasOriginals_ = false;
  std::vector<std::uint16_t> order_;  // of the fields that the row has attributes for
  XmlRowValues now_;
  XmlRowValues was_;
  std::vector<store::BlockLoader::OldValue> old_;
  KeyChanges keyChanges_;
  std::vector<std::uint32_t> inserted_;
  std::string text_;
};

}  // namespace kiv::packet
