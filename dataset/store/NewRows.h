#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "dataset/store/Column.h"

namespace kiv::store {

/// Where the values of rows behind the last one go. What is there is nobody's until the row is counted, so that it may
/// be written before all is known to be right. The columns' blocks are looked up once for all rows that they hold.
class NewRows {
 public:
  /// Sees to it that Put() has somewhere to write. Throws std::bad_alloc.
  void Reach(std::vector<Column>& columns, std::uint32_t row) {
    if (row - first_ >= count_) {
      FindTargets(columns, row);
    }
  }
  /// The row after the last one that has been reached.
  [[nodiscard]] std::uint32_t End() const noexcept { return first_ + count_; }
  /// To be called when the columns get other blocks or share them with a copy.
  void Forget() noexcept { count_ = 0; }
  /// Writes a value of fixed width, a code or a number; not whether it is null.
  void Put(std::size_t field, std::uint32_t row, const Cell& cell) noexcept {
    const Target& target = targets_[field];
    const std::size_t place = PlaceInBlock(row);
    PutElement(target, place, cell.bits);
    if (target.more != nullptr) {
      std::memcpy(target.more + place * sizeof cell.more, &cell.more, sizeof cell.more);
    }
  }

  /// The same of a type that has no second half.
  void PutBits(std::size_t field, std::uint32_t row, std::uint64_t bits) noexcept {
    PutElement(targets_[field], PlaceInBlock(row), bits);
  }

 private:
  struct Target {
    std::byte* elements;
    std::byte* more;  // the second halves of a Guid, null elsewhere
    Plane::Width width;
  };
  void FindTargets(std::vector<Column>& columns, std::uint32_t row);
  static void PutElement(const Target& target, std::size_t place, std::uint64_t bits) noexcept {
    const auto put = [&]<class Element>(Element element) {
      std::memcpy(target.elements + place * sizeof element, &element, sizeof element);
    };
    switch (target.width) {
      case Plane::Width::Bit: {
        std::byte& eight = target.elements[place / 8];
        const std::byte mask{static_cast<std::uint8_t>(1U << (place % 8))};
        eight = bits != 0 ? eight | mask : eight & ~mask;
        break;
      }
      case Plane::Width::One:
        put(static_cast<std::uint8_t>(bits));
        break;
      case Plane::Width::Two:
        put(static_cast<std::uint16_t>(bits));
        break;
      case Plane::Width::Four:
        put(static_cast<std::uint32_t>(bits));
        break;
      case Plane::Width::Eight:
        put(bits);
        break;
    }
  }

  std::vector<Target> targets_;  // by field
  std::uint32_t first_ = 0;
  std::uint32_t count_ = 0;  // of rows, from the first one on, whose values have a place
};

}  // namespace kiv::store
