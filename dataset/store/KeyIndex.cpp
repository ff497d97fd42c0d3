#include "dataset/store/KeyIndex.h"

#include <algorithm>

#include "dataset/store/Hash.h"

namespace kiv::store {
namespace {

bool FitsTag(const Cell& cell) noexcept {
  return static_cast<std::int64_t>(cell.bits) == static_cast<std::int32_t>(cell.bits);
}

}  // namespace

KeyIndex::KeyIndex(const Contents& contents) noexcept
    : contents_(contents),
      fields_(contents.schemaData->keyFields),
      // Differs from dataset to dataset and from run to run: nobody can prepare keys that all fall on one place.
      seed_(Mix64(reinterpret_cast<std::uintptr_t>(&contents) ^ 0x9E3779B97F4A7C15U)) {
  isNumber_ = fields_.size() == 1 && contents.columns[fields_[0]].type != FieldType::Guid &&
              TraitsOf(contents.columns[fields_[0]].type).storage == Storage::Fixed;
  const FieldType type = isNumber_ ? contents.columns[fields_[0]].type : FieldType::Text;
  isInteger_ = type == FieldType::Int32 || type == FieldType::Int64 || type == FieldType::AutoInc;
  isExact_ = isNumber_;
}

std::uint32_t KeyIndex::TagOf(std::span<const Cell> key) const noexcept {
  if (isNumber_) {
    return FitsTag(key[0]) ? Mix32(static_cast<std::uint32_t>(key[0].bits) ^ seed_) : Mix64(key[0].bits ^ seed_);
  }
  std::uint64_t hash = seed_;
  for (std::size_t i = 0; i < key.size(); ++i) {
    const Cell& cell = key[i];
    const bool isText = TraitsOf(contents_.columns[fields_[i]].type).storage == Storage::Texts;
    const std::uint32_t own = isText ? HashBytes(cell.bytes.data(), cell.bytes.size(), hash)
                                     : Mix64(cell.bits ^ cell.more * 0x9E3779B97F4A7C15U ^ hash);
    hash = (hash ^ own) * 0xD6E8FEB86659FD93U;
  }
  return Mix64(hash);
}

std::uint32_t KeyIndex::Find(std::uint32_t tag, std::span<const Cell> key) const noexcept {
  return isExact_ && !FitsTag(key[0]) ? HashIndex::kNone
                                      : index_.Find(tag, [&](std::uint32_t row) { return HasKey(row, key); });
}

bool KeyIndex::HasKey(std::uint32_t row, std::span<const Cell> key) const noexcept {
  for (std::size_t i = 0; i < fields_.size() && !isExact_; ++i) {
    const std::uint16_t field = fields_[i];
    if (!AreEqual(contents_.columns[field].type, contents_.Read(row, field), key[i])) {
      return false;
    }
  }
  return true;
}

void KeyIndex::Insert(std::uint32_t tag, std::span<const Cell> key, std::uint32_t row) noexcept {
  if (isBroken_ || !index_.HasRoom(tag)) {
    isBroken_ = true;
    return;
  }
  isExact_ = isExact_ && FitsTag(key[0]);
  index_.Insert(tag, row);
}

std::span<const Cell> KeyIndex::ReadKey(std::uint32_t row, std::vector<Cell>& key) const {
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    key[i] = isNumber_ ? contents_.columns[fields_[i]].Load(row) : contents_.Read(row, fields_[i]);
  }
  return key;
}

void KeyIndex::RefuseTwice(std::span<const Cell> key) const {
  Text shown;
  for (std::size_t i = 0; i < key.size(); ++i) {
    shown += i == 0 ? "" : ", ";
    shown += Describe(contents_.columns[fields_[i]].type, key[i]);
  }
  throw Error(contents_.owner + ": cheia " + shown + " exista deja");
}

void KeyIndex::Build(std::uint32_t rows) {
  if (!Exists()) {
    return;
  }
  KeyIndex built(contents_);
  built.seed_ = seed_;
  // Tags spread evenly; a segment that gets more than its share grows.
  for (std::uint32_t segment = 0; segment < HashIndex::kSegments && rows >= kBlockRows; ++segment) {
    built.index_.ReserveSegment(segment, rows / HashIndex::kSegments);
  }
  // Places are fetched a few rows ahead: waiting for memory row by row would take most of the time.
  constexpr std::uint32_t kAhead = 32;
  std::array<std::uint32_t, kAhead> tags{};
  std::vector<Cell> cells(fields_.size());
  for (std::uint32_t first = 0; first < rows; first += kAhead) {
    const std::uint32_t end = std::min(rows, first + kAhead);
    for (std::uint32_t row = first; row < end; ++row) {
      tags[row - first] = TagOf(ReadKey(row, cells));
      built.index_.Prefetch(tags[row - first]);
    }
    for (std::uint32_t row = first; row < end; ++row) {
      if (contents_.StateOf(row) < StoredState::Deleted) {
        built.Add(tags[row - first], ReadKey(row, cells), row);
      }
    }
  }
  index_ = std::move(built.index_);
  isExact_ = built.isExact_;
  isBroken_ = false;
}

void KeyIndex::Add(std::uint32_t tag, std::span<const Cell> key, std::uint32_t row) {
  index_.Reserve(tag);
  isExact_ = isExact_ && FitsTag(key[0]);
  if (index_.InsertUnless(tag, row, [&](std::uint32_t other) { return HasKey(other, key); }) != HashIndex::kNone) {
    RefuseTwice(key);
  }
}

}  // namespace kiv::store
