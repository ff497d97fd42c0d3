#pragma once

#include <vector>

#include "dataset/packet/CellSource.h"
#include "dataset/packet/ChunkWriter.h"

namespace kiv::packet {

/// Writes rows in blocks of 8,192, column by column, each column as narrow as its values allow.
class RowWriter {
 public:
  RowWriter(const CellSource& cells, const std::vector<std::uint32_t>& largeNumbers, ChunkWriter& out);

  /// Adds a row; rows come in their order.
  void Add(std::uint32_t row);
  /// Writes what has been added and not yet written.
  void Finish();

 private:
  void WriteBlock();
  void BeginChunk();
  void WriteStates();
  void WriteColumn(std::uint16_t field);
  void WriteTexts(std::uint16_t field);
  /// Writes texts from `place` on, as many as the chunk takes, up to the next long one; returns the place behind them.
  std::uint32_t PutTexts(std::uint16_t field, std::uint32_t place);
  /// The same where the rows' codes are gathered. A heap holds texts as a packet does, each behind its length, so that
  /// those that were added one after another are copied at once.
  std::uint32_t CopyTexts(std::uint16_t field, std::uint32_t place);
  [[nodiscard]] std::string_view TextAt(std::uint16_t field, std::uint32_t place) const noexcept;
  /// The elements of the block's rows, copied only where they do not lie together.
  void Gather(const store::Plane& plane);
  void GatherNumbers(std::uint16_t field);
  /// Elements and nulls value by value, where not all that the columns hold is wanted.
  void GatherCells(std::uint16_t field, bool secondHalves = false);
  void CountNulls();
  void GatherNulls(const store::Column& column);
  void PutSection(std::uint16_t field, Encoding encoding, NullBits nullBits);
  void PutElements(std::uint16_t field, FieldType type);
  template <class Element>
  void PutNumbers(std::uint16_t field);
  [[nodiscard]] bool IsNull(std::uint32_t place) const noexcept {
    return nullBits_ != NullBits::None && (std::to_integer<unsigned>(nulls_[place / 8]) >> (place % 8) & 1U) != 0;
  }
  [[nodiscard]] std::uint32_t Count() const noexcept { return static_cast<std::uint32_t>(rows_.size()); }

  const CellSource& cells_;
  const store::Contents& contents_;
  const std::vector<std::uint32_t>& largeNumbers_;
  ChunkWriter& out_;
  std::vector<std::uint32_t> rows_;
  std::uint32_t firstRow_ = 0;  // of the block, as the packet counts
  std::vector<std::byte> copied_;
  std::span<const std::byte> elements_;
  std::vector<std::byte> nulls_;
  NullBits nullBits_ = NullBits::None;
};

}  // namespace kiv::packet
