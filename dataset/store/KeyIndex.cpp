#include "dataset/store/KeyIndex.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <utility>

#include "dataset/store/Hash.h"

namespace kiv::store {
namespace {

/// How many entries ahead a place is fetched.
constexpr std::size_t kAhead = 16;

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

std::uint32_t KeyIndex::TagOfNumber(const Cell& cell) const noexcept {
  return FitsTag(cell) ? Mix32(static_cast<std::uint32_t>(cell.bits) ^ seed_) : Mix64(cell.bits ^ seed_);
}

std::uint32_t KeyIndex::TagOf(std::span<const Cell> key) const noexcept {
  if (isNumber_) {
    return TagOfNumber(key[0]);
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
  std::vector<Cell> key(fields_.size());
  if (!built.AddBySegment(rows, key)) {
    rowWithTakenKey_ = built.FindFirstTwice(rows, key);
    RefuseTwice(key);
  }
  index_ = std::move(built.index_);
  isExact_ = built.isExact_;
  isBroken_ = false;
}

bool KeyIndex::AddBySegment(std::uint32_t rows, std::vector<Cell>& key) {
  // Waiting for memory row by row would take most of the time: the entries of many rows are sorted by segment first,
  // and a segment is filled while it is near.
  constexpr std::uint32_t kStretch = kBlockRows;
  std::vector<Entry> entries;
  std::vector<Entry> sorted(std::min(rows, kStretch));
  entries.reserve(sorted.size());
  for (std::uint32_t first = 0; first < rows; first += kStretch) {
    ReadEntries(first, std::min(rows, first + kStretch), entries, key);
    SortBySegment(entries, sorted);
    for (std::size_t i = 0; i < entries.size(); ++i) {
      if (i + kAhead < entries.size()) {
        index_.Prefetch(sorted[i + kAhead].tag);
      }
      if (!TryAdd(sorted[i], key)) {
        return false;
      }
    }
  }
  return true;
}

std::optional<std::uint32_t> KeyIndex::FindFirstTwice(std::uint32_t rows, std::vector<Cell>& key) {
  index_.Clear();
  for (std::uint32_t row = 0; row < rows; ++row) {
    if (contents_.StateOf(row) < StoredState::Deleted && !TryAdd({TagOf(ReadKey(row, key)), row}, key)) {
      return row;
    }
  }
  return std::nullopt;
}

void KeyIndex::ReadEntries(std::uint32_t first, std::uint32_t end, std::vector<Entry>& entries,
                           std::vector<Cell>& key) {
  entries.clear();
  const Column& column = contents_.columns[fields_[0]];
  for (std::uint32_t row = first; row < end; ++row) {
    if (contents_.StateOf(row) >= StoredState::Deleted) {
      continue;
    }
    if (isNumber_) {
      const Cell cell = column.Load(row);
      isExact_ = isExact_ && FitsTag(cell);
      entries.push_back({TagOfNumber(cell), row});
    } else {
      ReadKey(row, key);
      entries.push_back({TagOf(key), row});
    }
  }
}

void KeyIndex::SortBySegment(std::span<const Entry> entries, std::span<Entry> sorted) noexcept {
  std::array<std::uint32_t, HashIndex::kSegments + 1> starts{};
  for (const Entry& entry : entries) {
    ++starts[HashIndex::SegmentOf(entry.tag) + 1];
  }
  std::partial_sum(starts.begin(), starts.end(), starts.begin());
  for (const Entry& entry : entries) {
    sorted[starts[HashIndex::SegmentOf(entry.tag)]++] = entry;
  }
}

bool KeyIndex::TryAdd(const Entry& entry, std::vector<Cell>& key) {
  index_.Reserve(entry.tag);
  bool isRead = false;
  return index_.InsertUnless(entry.tag, entry.row, [&](std::uint32_t other) {
    if (!isExact_ && !std::exchange(isRead, true)) {
      ReadKey(entry.row, key);
    }
    return HasKey(other, key);
  }) == HashIndex::kNone;
}

}  // namespace kiv::store
