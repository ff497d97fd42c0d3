#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include "kivtools/dataset/store/Plane.h"

namespace kiv::store {

class Store;

/// What an edit does to one row.
struct RowChange {
  std::uint32_t row;
  bool wasThere;  ///< was a row that is not deleted
  bool isThere;   ///< is one now
  /// Of a row that stays there: the fields that get another value.
  std::span<const std::uint16_t> fields;
};

/// What goes with the rows of a store: an order of them, a cursor, a sum. It is told of everything that changes which
/// rows there are and what they hold: posts, and whatever takes them back. For each row it is first called with the row
/// as it was, to look, then with the row as it is, to change what it has itself. An edit of many rows goes row by row.
class Follower {
 public:
  virtual ~Follower() = default;
  /// An edit is about to change rows that many times. Makes room for all of it, and throws to refuse the edit, of which
  /// nothing has been written. It may be that the edit does not come.
  virtual void Prepare(std::uint32_t changes) = 0;
  /// The row is about to change.
  virtual void Before(const RowChange& change) noexcept = 0;
  /// The row has changed.
  virtual void After(const RowChange& change) noexcept = 0;
  /// The edit is over.
  virtual void Done() noexcept {}
  /// Rows have been loaded behind the others; those that were there are as they were.
  virtual void RowsAdded() noexcept = 0;
  /// Rows have new numbers, in the same order: that of a row that was there is at the place of its old one.
  virtual void Renumbered(const Plane& numbers) noexcept = 0;
};

/// The followers of a store. It outlives the store where somebody still holds it.
class Followers {
 public:
  /// Throws std::bad_alloc.
  Followers(Store& store, std::size_t fields) : store_(&store), fieldVersions_(fields) {}

  /// The store, null once it is gone.
  [[nodiscard]] Store* GetStore() const noexcept { return store_; }
  void StoreIsGone() noexcept { store_ = nullptr; }
  /// Throws std::bad_alloc.
  void Add(Follower& follower) { followers_.push_back(&follower); }
  void Remove(Follower& follower) noexcept { std::erase(followers_, &follower); }

  void Prepare(std::uint32_t changes) {
    for (Follower* const follower : followers_) {
      follower->Prepare(changes);
    }
  }
  /// Grows with every change of the values of a field, be it that there are others because rows come or go. Whoever
  /// reads the rows of this store without following them sees by it that something has changed.
  [[nodiscard]] std::uint64_t VersionOf(std::size_t field) const noexcept {
    return rowsVersion_ + fieldVersions_[field];
  }
  void Count(const RowChange& change) noexcept {
    if (!change.wasThere || !change.isThere) {
      ++rowsVersion_;
      return;
    }
    for (const std::uint16_t field : change.fields) {
      ++fieldVersions_[field];
    }
  }
  void RowsAdded() noexcept {
    ++rowsVersion_;
    ForEach([](Follower& follower) { follower.RowsAdded(); });
  }
  /// How often rows have been given new numbers.
  [[nodiscard]] std::uint32_t Numbering() const noexcept { return numbering_; }
  void Renumbered(const Plane& numbers) noexcept {
    ++numbering_;
    ForEach([&numbers](Follower& follower) { follower.Renumbered(numbers); });
  }
  template <class Tell>
  void ForEach(Tell&& tell) noexcept {
    for (Follower* const follower : followers_) {
      tell(*follower);
    }
  }

 private:
  Store* store_;
  std::vector<Follower*> followers_;
  std::uint32_t numbering_ = 0;
  std::uint64_t rowsVersion_ = 0;
  std::vector<std::uint64_t> fieldVersions_;
};

}  // namespace kiv::store
