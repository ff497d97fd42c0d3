#pragma once

#include <vector>

#include "dataset/packet/CellSource.h"
#include "dataset/packet/ChunkWriter.h"
#include "kivtools/dataset/Changes.h"

namespace kiv::packet {

/// Writes contents that stay as they are, as the chunks of a packet. Rows that are gone are left out unless the log
/// names them, and so are large values that nobody uses. Of a delta only what has changed is written.
class DatasetWriter {
 public:
  DatasetWriter(const store::Contents& contents, ChunkWriter& out) noexcept
      : cells_(contents, PacketKind::Offline), contents_(contents), out_(out) {}
  DatasetWriter(const Delta& delta, ChunkWriter& out) noexcept
      : cells_(delta.GetContents(), PacketKind::Delta), contents_(delta.GetContents()), delta_(&delta), out_(out) {}

  void Write(std::span<const PacketNote> notes);

 private:
  void NumberLargeValues();
  [[nodiscard]] std::uint32_t RowCount() const noexcept;
  [[nodiscard]] std::uint32_t RecordCount() const noexcept;
  /// Calls back with each row that is written, in order.
  template <class Visit>
  void ForEachRow(Visit visit) const;

  void WriteTable();
  void WriteNotes(std::span<const PacketNote> notes);
  void PutField(std::size_t field);
  void PutDefault(const FieldDef& field);
  void WriteLargeValues();
  void WriteEntries(std::uint16_t field);
  void WriteRows();
  void WriteLog();
  struct OldValue {
    std::uint16_t field;
    store::Cell cell;
  };
  void CollectOld(std::uint32_t position);
  void CollectChanged(std::uint32_t row);
  /// Calls back with kind and row of each record, as the packet has them, the old values in `old_`.
  template <class Visit>
  void ForEachRecord(Visit visit);
  void WriteRecord(ChangeKind kind, std::uint32_t row);
  void PutOldValue(std::uint16_t field, const store::Cell& old);

  CellSource cells_;
  const store::Contents& contents_;
  const Delta* delta_ = nullptr;
  ChunkWriter& out_;
  std::vector<std::uint32_t> dropped_;       // the rows that are left out, in order
  std::vector<std::uint32_t> largeNumbers_;  // in the packet, by the number in the contents
  std::vector<OldValue> old_;                // of the record that is being written
};

/// Writes a value in pieces, in chunks of their own; the last one stays open.
void PutPieces(ChunkWriter& out, PieceOf kind, std::string_view bytes);
/// Writes a text that is too long for the chunk that will refer to it. No chunk may be open, none is afterwards.
void WriteLongText(ChunkWriter& out, std::string_view bytes);
/// Puts a text, or the sign for one that has been written before.
void PutText(ChunkWriter& out, std::string_view bytes, std::size_t most);

}  // namespace kiv::packet
