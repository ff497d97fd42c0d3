#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "dataset/packet/ChunkReader.h"
#include "dataset/packet/RowReader.h"
#include "dataset/store/BlockLoader.h"

namespace kiv::packet {

/// Builds a dataset from the chunks of a packet, which may say anything.
class DatasetReader {
 public:
  DatasetReader(ChunkReader& in, const ReadLimits& limits) : in_(in), budget_(limits) {}

  /// Reads a packet of that kind; refuses others.
  std::unique_ptr<store::Store> Read(PacketKind kind);
  /// Of a delta, once it is read.
  [[nodiscard]] const Guid& DeltaId() const noexcept { return deltaId_; }
  [[nodiscard]] PacketNotes TakeNotes() noexcept { return std::move(notes_); }

 private:
  /// The chunks of a table come in this order; those of a kind may be as many as they like.
  enum class Stage : std::uint8_t { Values, Rows, Records };

  void ReadTable();
  FieldDef ReadField(bool& hasHeap);
  Value ReadDefault(const FieldDef& field);
  void Enter(Stage stage);
  void ReadChunk();
  void ReadNotes();
  void ReadPieces();
  void ReadEntries();
  void ReadRecords();
  store::BlockLoader::OldValue ReadOldValue();
  std::unique_ptr<store::Store> Finish();

  ChunkReader& in_;
  Budget budget_;
  Stage stage_ = Stage::Values;
  std::uint32_t rowCount_ = 0;
  std::uint32_t recordCount_ = 0;
  std::uint32_t recordsRead_ = 0;
  std::int64_t nextTemporary_ = -1;
  Guid deltaId_{};
  PacketNotes notes_;
  std::vector<FieldDef> fields_;
  std::vector<bool> hasHeap_;
  std::optional<store::BlockLoader> loader_;
  std::optional<RowReader> rows_;
  LongTexts longTexts_;
  std::deque<std::string> oldTexts_;  // of the record that is being read
  PieceOf pieceOf_{};
  std::optional<std::uint32_t> piecesTotal_;
  std::string pieces_;
};

}  // namespace kiv::packet
