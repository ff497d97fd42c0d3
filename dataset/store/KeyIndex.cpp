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
  if (isExact_) {
    return FitsTag(key[0]) ? index_.Find(tag, [](std::uint32_t) { return true; }) : HashIndex::kNone;
  }
  return index_.Find(tag, [&](std::uint32_t row) {
    for (std::size_t i = 0; i < fields_.size(); ++i) {
      const std::uint16_t field = fields_[i];
      if (!AreEqual(contents_.columns[field].type, contents_.Read(row, field), key[i])) {
        return false;
      }
    }
    return true;
  });
}

void KeyIndex::Insert(std::uint32_t tag, std::span<const Cell> key, std::uint32_t row) noexcept {
  if (isBroken_ || !index_.HasRoom(tag)) {
    isBroken_ = true;
    return;
  }
  isExact_ = isExact_ && FitsTag(key[0]);
  index_.Insert(tag, row);
}

void KeyIndex::ReadKey(std::uint32_t row, std::vector<Cell>& key) const {
  key.clear();
  for (const std::uint16_t field : fields_) {
    key.push_back(contents_.Read(row, field));
  }
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
  const auto isPresent = [&](std::uint32_t row) { return contents_.StateOf(row) < StoredState::Deleted; };
  KeyIndex built(contents_);
  std::array<std::uint32_t, HashIndex::kSegments> counts{};
  std::vector<Cell> key;
  for (std::uint32_t row = 0; row < rows; ++row) {
    if (isPresent(row)) {
      ReadKey(row, key);
      ++counts[HashIndex::SegmentOf(TagOf(key))];
    }
  }
  for (std::uint32_t segment = 0; segment < HashIndex::kSegments; ++segment) {
    built.index_.ReserveSegment(segment, counts[segment]);
  }
  for (std::uint32_t row = 0; row < rows; ++row) {
    if (isPresent(row)) {
      ReadKey(row, key);
      const std::uint32_t tag = TagOf(key);
      if (built.Find(tag, key) != HashIndex::kNone) {
        RefuseTwice(key);
      }
      built.Insert(tag, key, row);
    }
  }
  index_ = std::move(built.index_);
  isExact_ = built.isExact_;
  isBroken_ = false;
}

}  // namespace kiv::store
