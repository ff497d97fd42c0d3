#pragma once

#include <deque>
#include <string>
#include <vector>

#include "dataset/packet/ChunkReader.h"
#include "dataset/store/BlockLoader.h"

namespace kiv::packet {

/// What a packet may still take of the memory that its reader allows.
class Budget {
 public:
  explicit Budget(const ReadLimits& limits) noexcept : limits_(limits), left_(limits.maxBytes) {}

  [[nodiscard]] const ReadLimits& Limits() const noexcept { return limits_; }
  [[nodiscard]] bool Covers(std::uint64_t bytes) const noexcept { return bytes <= left_; }
  void Spend(const ChunkReader& in, std::uint64_t bytes) {
    if (bytes > left_) {
      in.Refuse("pachetul ar ocupa mai multa memorie decat este permis");
    }
    left_ -= bytes;
  }

 private:
  ReadLimits limits_;
  std::uint64_t left_;
};

/// Texts that have come in pieces, for the next chunk that is not made of pieces itself.
using LongTexts = std::deque<std::string>;

/// Takes a text as PutText puts it. The bytes are valid until the next text or chunk.
class TextTaker {
 public:
  TextTaker(ChunkReader& in, LongTexts& longTexts) noexcept : in_(in), longTexts_(longTexts) {}

  std::string_view Take(FieldType type);

 private:
  ChunkReader& in_;
  LongTexts& longTexts_;
  std::string held_;
};

/// Reads blocks of rows from ROWS chunks.
class RowReader {
 public:
  RowReader(ChunkReader& in, store::BlockLoader& loader, std::span<const FieldDef> fields,
            const std::vector<bool>& hasHeap, LongTexts& longTexts, Budget& budget, std::uint32_t rowCount);

  /// Reads the chunk that has just been met.
  void ReadChunk();
  /// Sees to it that no row is missing.
  void Finish() const;

 private:
  void BeginBlock(std::uint32_t rows);
  void ReadSection();
  void ReadStates();
  void ReadColumn(std::uint16_t field);
  void ReadNulls(std::uint16_t field);
  void ReadElements(std::uint16_t field, Encoding encoding);
  template <class Element>
  void ReadNumbers(std::uint16_t field, Encoding encoding);
  void ReadTexts(std::uint16_t field);
  /// Takes as many texts at once as it can; returns the place after them.
  std::uint32_t ReadStoredTexts(std::uint16_t field, std::uint32_t first, std::uint32_t end);
  void EndBlock();
  [[nodiscard]] bool IsNull(std::uint32_t place) const noexcept {
    return (std::to_integer<unsigned>(nulls_[place / 8]) >> (place % 8) & 1U) != 0;
  }

  ChunkReader& in_;
  store::BlockLoader& loader_;
  std::span<const FieldDef> fields_;
  const std::vector<bool>& hasHeap_;
  TextTaker texts_;
  Budget& budget_;
  std::uint32_t rowCount_;
  std::uint64_t rowBytes_ = 0;
  std::uint32_t done_ = 0;       // rows of the blocks before this one
  std::uint32_t blockRows_ = 0;  // 0 between blocks
  bool hasStates_ = false;
  std::uint16_t nextField_ = 0;
  std::uint32_t textsRead_ = 0;  // of the field that is being read
  std::vector<std::byte> nulls_;
  NullBits nullBits_ = NullBits::None;
};

}  // namespace kiv::packet
