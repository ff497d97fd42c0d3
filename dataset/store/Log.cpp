#include "dataset/store/Log.h"

#include <algorithm>

#include "dataset/store/Column.h"
#include "dataset/store/SchemaData.h"

namespace kiv::store {
namespace {

/// Positions have 32 bits.
constexpr std::size_t kMostPieces = (std::size_t{1} << 19U) - 1;
constexpr std::uint16_t kIsNull = 0x8000;

constexpr std::uint32_t WordsFor(std::size_t payload) noexcept {
  return static_cast<std::uint32_t>((sizeof(Log::Header) + payload + 7) / 8);
}

}  // namespace

std::uint32_t Log::End() const noexcept {
  return pieces_.empty() ? 0 : static_cast<std::uint32_t>((pieces_.size() - 1) * kWords) + pieces_.back().used;
}

Log::Header Log::HeaderAt(std::uint32_t position) const noexcept {
  Header header;
  std::memcpy(&header, pieces_[position / kWords].block.Data() + std::size_t{position % kWords} * 8, sizeof header);
  return header;
}

std::uint32_t Log::Next(std::uint32_t position) const noexcept {
  const std::uint32_t piece = position / kWords;
  const std::uint32_t after = position % kWords + HeaderAt(position).words;
  if (after < pieces_[piece].used) {
    return piece * kWords + after;
  }
  return piece + 1 < pieces_.size() && pieces_[piece + 1].used > 0 ? (piece + 1) * kWords : kNone;
}

std::uint32_t Log::Last() const noexcept {
  if (count_ == 0) {
    return kNone;
  }
  // The last piece may be empty: room that a post made and then had no use for.
  const std::size_t piece = pieces_.back().used > 0 ? pieces_.size() - 1 : pieces_.size() - 2;
  return static_cast<std::uint32_t>(piece * kWords) + pieces_[piece].last;
}

std::uint32_t Log::Before(std::uint32_t position) const noexcept {
  if (const std::uint16_t words = HeaderAt(position).wordsBefore; words > 0) {
    return position - words;
  }
  const std::uint32_t piece = position / kWords;
  return piece == 0 ? kNone : (piece - 1) * kWords + pieces_[piece - 1].last;
}

void Log::MakeRoom(std::size_t payload) {
  const std::size_t words = WordsFor(payload);
  if (pieces_.empty()) {
    pieces_.push_back({Block(std::max<std::size_t>(1024, std::min(words * 8, kLargestBlock)))});
    return;
  }
  Piece& last = pieces_.back();
  if (last.used + words > kWords) {
    if (pieces_.size() == kMostPieces) {
      throw Error("Dataset: jurnalul modificarilor este plin");
    }
    pieces_.push_back({Block(kLargestBlock)});
    return;
  }
  const std::size_t wanted = (last.used + words) * 8;
  if (wanted > last.block.Size() || last.block.IsShared()) {
    const std::size_t grown = wanted <= 1024 ? 1024 : wanted <= 8192 ? 8192 : kLargestBlock;
    last.block = last.block.Copy(std::max(grown, last.block.Size()));
  }
}

std::uint32_t Log::Append(Header header, std::span<const std::byte> payload) noexcept {
  Piece& piece = pieces_.back();
  header.words = static_cast<std::uint16_t>(WordsFor(payload.size()));
  header.wordsBefore = static_cast<std::uint16_t>(piece.used - piece.last);
  std::byte* const at = piece.block.Data() + std::size_t{piece.used} * 8;
  std::memcpy(at, &header, sizeof header);
  if (!payload.empty()) {
    std::memcpy(at + sizeof header, payload.data(), payload.size());
  }
  piece.last = piece.used;
  piece.used += header.words;
  ++count_;
  return static_cast<std::uint32_t>((pieces_.size() - 1) * kWords) + piece.last;
}

void Log::RemoveLast() noexcept {
  if (pieces_.back().used == 0) {
    pieces_.pop_back();
  }
  Piece& piece = pieces_.back();
  const std::uint32_t before =
      HeaderAt(static_cast<std::uint32_t>((pieces_.size() - 1) * kWords) + piece.last).wordsBefore;
  piece.used = piece.last;
  piece.last -= before;
  if (--count_ == 0) {
    Clear();
  } else if (piece.used == 0) {
    pieces_.pop_back();
  }
}

void Log::Clear() noexcept {
  pieces_.clear();
  count_ = 0;
}

void Log::MakeAllWritable() {
  for (Piece& piece : pieces_) {
    if (piece.block.IsShared()) {
      piece.block = piece.block.Copy(piece.block.Size());
    }
  }
}

bool RecordReader::Next() noexcept {
  if (left_ == 0) {
    return false;
  }
  --left_;
  std::uint16_t number = 0;
  std::memcpy(&number, at_, sizeof number);
  at_ += sizeof number;
  field_ = number & (kIsNull - 1U);
  place_ = at_;
  old_ = {};
  if ((number & kIsNull) == 0) {
    const FieldType type = schema_.fields[field_].type;
    old_ = LoadElement(type, at_, 0);
    if (type == FieldType::Guid) {
      std::memcpy(&old_.more, at_ + sizeof old_.bits, sizeof old_.more);
    }
    at_ += BytesInRecord(type, TraitsOf(type));
  }
  return true;
}

void AppendOldValue(std::vector<std::byte>& payload, std::uint16_t field, FieldType type, const Cell& old) {
  const auto append = [&payload](const void* from, std::size_t size) {
    const auto* const bytes = static_cast<const std::byte*>(from);
    payload.insert(payload.end(), bytes, bytes + size);
  };
  const auto number = static_cast<std::uint16_t>(old.isNull ? field | kIsNull : field);
  append(&number, sizeof number);
  if (!old.isNull) {
    // Both targets are little-endian: the first bytes of the 64 are the element.
    append(&old.bits, Plane::BytesOf(TraitsOf(type).width, 1));
    if (type == FieldType::Guid) {
      append(&old.more, sizeof old.more);
    }
  }
}

}  // namespace kiv::store
