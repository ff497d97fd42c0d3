#pragma once

#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "dataset/store/BlockLoader.h"

namespace kiv::packet {

/// Rows that have another key than they had, until all of them are known.
class KeyChanges {
 public:
  struct Change {
    std::uint32_t row;
    std::string newKey;
    std::vector<store::BlockLoader::OldValue> old;
    std::deque<std::string> bytes;  // of the old values
    enum class Visit : std::uint8_t { None, Begun, Done } visit = Visit::None;
    bool hasLeft = false;
  };

  void Add(std::uint32_t row, const std::string& oldKey, std::string newKey,
           std::span<const store::BlockLoader::OldValue> old) {
    Change& change = changes_.emplace_back(Change{row, std::move(newKey), {old.begin(), old.end()}, {}});
    for (store::BlockLoader::OldValue& value : change.old) {
      value.cell.bytes = change.bytes.emplace_back(value.cell.bytes);
    }
    byOldKey_.emplace(oldKey, &change);
  }
  /// Takes each change after the one that leaves its key. Where they go round in a ring, one of them leaves first.
  template <class Leave, class Take>
  void ForEachInOrder(Leave leave, Take take) {
    std::vector<Change*> waiting;
    for (Change& first : changes_) {
      for (Change* change = &first; change != nullptr && change->visit == Change::Visit::None;) {
        change->visit = Change::Visit::Begun;
        waiting.push_back(change);
        const auto leaving = byOldKey_.find(change->newKey);
        change = leaving == byOldKey_.end() ? nullptr : leaving->second;
        if (change != nullptr && change->visit == Change::Visit::Begun) {
          change->hasLeft = true;
          leave(*change);
        }
      }
      for (; !waiting.empty(); waiting.pop_back()) {
        waiting.back()->visit = Change::Visit::Done;
        take(*waiting.back());
      }
    }
  }

 private:
  std::deque<Change> changes_;
  std::unordered_map<std::string, Change*> byOldKey_;
};

}  // namespace kiv::packet
