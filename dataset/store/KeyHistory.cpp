#include "dataset/store/KeyHistory.h"

#include <algorithm>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "dataset/store/Log.h"

namespace kiv::store {
namespace {

using Key = std::vector<Cell>;

/// Equal for equal keys alone.
std::string BytesOf(const Contents& contents, std::span<const std::uint16_t> fields, const Key& key) {
  std::string bytes;
  const auto append = [&bytes](const auto& number) {
    bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
  };
  for (std::size_t i = 0; i < key.size(); ++i) {
    if (TraitsOf(contents.columns[fields[i]].type).storage == Storage::Fixed) {
      append(key[i].bits);
      append(key[i].more);
    } else {
      append(key[i].bytes.size());
      bytes += key[i].bytes;
    }
  }
  return bytes;
}

/// The keys of the rows while the log is walked backwards, where they are not those of the present.
class Walk {
 public:
  Walk(const Contents& contents, const KeyIndex& present) noexcept : contents_(contents), present_(present) {}

  void Undo(std::uint32_t record) {
    const Log::Header header = contents_.log.HeaderAt(record);
    switch (header.kind) {
      case ChangeKind::Insert:
        Free(header.row);
        break;
      case ChangeKind::Delete:
        Take(header.row);
        break;
      case ChangeKind::Update:
        if (HoldsKey(record)) {
          Free(header.row);
          PutOldKey(record, header.row);
          Take(header.row);
        }
        break;
      case ChangeKind::Restore:
        Free(header.row);
        PutOldKey(record, header.row);
        break;
    }
  }

  [[nodiscard]] bool HoldsKey(std::uint32_t record) const {
    for (RecordReader old(contents_.log, record, *contents_.schemaData); old.Next();) {
      if (std::ranges::find(present_.Fields(), old.Field()) != present_.Fields().end()) {
        return true;
      }
    }
    return false;
  }

 private:
  Key KeyOf(std::uint32_t row) const {
    if (const auto found = keys_.find(row); found != keys_.end()) {
      return found->second;
    }
    Key key;
    for (const std::uint16_t field : present_.Fields()) {
      key.push_back(contents_.Read(row, field));
    }
    return key;
  }

  void Free(std::uint32_t row) { holders_[BytesOf(contents_, present_.Fields(), KeyOf(row))] = Contents::kNone; }

  void Take(std::uint32_t row) {
    const Key key = KeyOf(row);
    const auto [held, isNew] = holders_.try_emplace(BytesOf(contents_, present_.Fields(), key), Contents::kNone);
    const std::uint32_t holder = isNew ? present_.Find(present_.TagOf(key), key) : held->second;
    if (holder != Contents::kNone) {
      present_.RefuseTwice(key);
    }
    held->second = row;
  }

  void PutOldKey(std::uint32_t record, std::uint32_t row) {
    Key key = KeyOf(row);
    for (RecordReader old(contents_.log, record, *contents_.schemaData); old.Next();) {
      const auto place = std::ranges::find(present_.Fields(), old.Field());
      if (place != present_.Fields().end()) {
        key[static_cast<std::size_t>(place - present_.Fields().begin())] = contents_.Resolve(old.Field(), old.Old());
      }
    }
    keys_[row] = std::move(key);
  }

  const Contents& contents_;
  const KeyIndex& present_;
  std::unordered_map<std::uint32_t, Key> keys_;             // by row
  std::unordered_map<std::string, std::uint32_t> holders_;  // by key
};

}  // namespace

void CheckKeyHistory(const Contents& contents, const KeyIndex& present) {
  const Log& log = contents.log;
  Walk walk(contents, present);
  const auto takesKey = [&](std::uint32_t at) {
    const ChangeKind kind = log.HeaderAt(at).kind;
    return kind == ChangeKind::Delete || (kind == ChangeKind::Update && walk.HoldsKey(at));
  };
  // Only what takes a key when it is undone can meet another; most logs have nothing of the kind.
  std::uint32_t first = present.Exists() ? log.First() : Log::kNone;
  while (first != Log::kNone && !takesKey(first)) {
    first = log.Next(first);
  }
  if (first == Log::kNone) {
    return;
  }
  for (std::uint32_t at = log.Last();; at = log.Before(at)) {
    walk.Undo(at);
    if (at == first) {
      return;
    }
  }
}

void CheckOriginalKeys(const Contents& contents, const KeyIndex& present) {
  std::unordered_set<std::string> keys;
  for (std::uint32_t row = 0; present.Exists() && row < contents.rowCount; ++row) {
    if (contents.StateOf(row) == StoredState::Inserted) {
      continue;
    }
    Key key;
    for (const std::uint16_t field : present.Fields()) {
      key.push_back(contents.ReadOriginal(row, field));
    }
    if (!keys.insert(BytesOf(contents, present.Fields(), key)).second) {
      present.RefuseTwice(key);
    }
  }
}

}  // namespace kiv::store
