#pragma once

#include <vector>

#include "dataset/packet/ChunkWriter.h"
#include "dataset/store/Contents.h"

namespace kiv::packet {

/// Writes contents that stay as they are, as the chunks of a packet. Rows that are gone are left out unless the log
/// names them, and so are large values that nobody uses.
class DatasetWriter {
 public:
  DatasetWriter(const store::Contents& contents, ChunkWriter& out) noexcept : contents_(contents), out_(out) {}

  void Write();

 private:
  void NumberRows();
  void NumberLargeValues();
  [[nodiscard]] std::uint32_t NewNumberOf(std::uint32_t row) const noexcept;

  void WriteTable();
  void PutField(std::size_t field);
  void PutDefault(const FieldDef& field);
  void WriteLargeValues();
  void WriteEntries(std::uint16_t field);
  void WriteRows();
  void WriteLog();
  void WriteRecord(std::uint32_t position);
  void PutOldValue(std::uint16_t field, const store::Cell& old);

  const store::Contents& contents_;
  ChunkWriter& out_;
  std::vector<std::uint32_t> dropped_;       // the rows that are left out, in order
  std::vector<std::uint32_t> largeNumbers_;  // in the packet, by the number in the contents
};

/// Writes a value in pieces, in chunks of their own; the last one stays open.
void PutPieces(ChunkWriter& out, PieceOf kind, std::string_view bytes);
/// Writes a text that is too long for the chunk that will refer to it. No chunk may be open, none is afterwards.
void WriteLongText(ChunkWriter& out, std::string_view bytes);
/// Puts a text, or the sign for one that has been written before.
void PutText(ChunkWriter& out, std::string_view bytes, std::size_t most);

}  // namespace kiv::packet
