#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

#include "kivtools/dataset/store/Block.h"

namespace kiv::store {

/// The rows of a block.
inline constexpr std::uint32_t kBlockRows = 8192;

constexpr std::uint32_t BlockOf(std::uint32_t row) noexcept {
  return row / kBlockRows;
}
constexpr std::uint32_t PlaceInBlock(std::uint32_t row) noexcept {
  return row % kBlockRows;
}

/// One element for each row: the values of a field, its null bits, the states of the rows. Elements lie in blocks of
/// 8,192; the first grows from 64 over 512, so that a table of ten rows stays small. Blocks may be shared with a copy
/// of the plane: what is to be written is made writable first, which may fail; writing then cannot.
class Plane {
 public:
  /// How wide an element is.
  enum class Width : std::uint8_t { Bit, One, Two, Four, Eight };
  /// Whether blocks hold zeros from the start, so that only those with anything else exist, or nothing.
  enum class Filled : bool { No, Zeros };

  explicit Plane(Width width, Filled filled = Filled::No) noexcept : width_(width), filled_(filled) {}

  [[nodiscard]] Width ElementWidth() const noexcept { return width_; }
  /// The bytes of that many elements.
  [[nodiscard]] static constexpr std::size_t BytesOf(Width width, std::size_t elements) noexcept {
    return width == Width::Bit ? (elements + 7) / 8 : elements << (static_cast<unsigned>(width) - 1);
  }

  /// The elements of a block as far as they have memory; those beyond, all of them if it is empty, are zero.
  [[nodiscard]] std::span<const std::byte> BlockBytes(std::uint32_t block) const noexcept {
    return block < blocks_.size() ? std::span<const std::byte>(blocks_[block].Data(), blocks_[block].Size())
                                  : std::span<const std::byte>();
  }
  /// Whether the row's element has memory.
  [[nodiscard]] bool Has(std::uint32_t row) const noexcept {
    const std::uint32_t block = BlockOf(row);
    return block < blocks_.size() && blocks_[block] && (block > 0 || row < firstRows_);
  }
  /// Where the row's block begins, which exists.
  [[nodiscard]] const std::byte* BlockAt(std::uint32_t row) const noexcept { return blocks_[BlockOf(row)].Data(); }
  /// The element, which exists.
  template <class Element>
  [[nodiscard]] Element At(std::uint32_t row) const noexcept {
    Element element;
    std::memcpy(&element, blocks_[BlockOf(row)].Data() + PlaceInBlock(row) * sizeof(Element), sizeof element);
    return element;
  }
  /// The element, zero where it has no memory.
  template <class Element>
  [[nodiscard]] Element AtOrZero(std::uint32_t row) const noexcept {
    return Has(row) ? At<Element>(row) : Element{};
  }
  [[nodiscard]] bool BitAt(std::uint32_t row) const noexcept {
    return Has(row) && (std::to_integer<unsigned>(BlockAt(row)[PlaceInBlock(row) / 8]) >> (row % 8) & 1U) != 0;
  }

  /// Sees to it that the row's element exists in memory of this plane alone. Throws std::bad_alloc; no element has
  /// changed then.
  void MakeWritable(std::uint32_t row) {
    if (!IsWritable(row)) {
      Provide(row);
    }
  }
  /// The same where a zero needs no memory.
  void MakeWritableFor(std::uint32_t row, bool zero) {
    if (!zero || Has(row)) {
      MakeWritable(row);
    }
  }
  /// Writes an element that is writable.
  template <class Element>
  void Put(std::uint32_t row, Element element) noexcept {
    std::memcpy(blocks_[BlockOf(row)].Data() + PlaceInBlock(row) * sizeof(Element), &element, sizeof element);
  }
  /// Writes a bit that is writable; a zero is there already where there is no memory.
  void PutBit(std::uint32_t row, bool bit) noexcept {
    if (!Has(row)) {
      return;
    }
    std::byte& eight = blocks_[BlockOf(row)].Data()[PlaceInBlock(row) / 8];
    const std::byte mask{static_cast<std::uint8_t>(1U << (row % 8))};
    eight = bit ? eight | mask : eight & ~mask;
  }
  /// Where the row's block begins, whose elements are writable.
  [[nodiscard]] std::byte* WritableBlock(std::uint32_t row) noexcept { return blocks_[BlockOf(row)].Data(); }
  /// Gives up all blocks.
  void Clear() noexcept {
    blocks_.clear();
    firstRows_ = 0;
  }
  /// Makes every block that exists writable. Throws std::bad_alloc.
  void MakeAllWritable();
  /// The row after the last whose element in the row's block has memory of this plane alone, `row` if its own has not.
  [[nodiscard]] std::uint32_t WritableEnd(std::uint32_t row) const noexcept;

 private:
  [[nodiscard]] bool IsWritable(std::uint32_t row) const noexcept {
    return Has(row) && !blocks_[BlockOf(row)].IsShared();
  }
  void Provide(std::uint32_t row);

  std::vector<Block> blocks_;
  std::uint32_t firstRows_ = 0;  // how many rows the first block has memory for
  Width width_;
  Filled filled_;
};

}  // namespace kiv::store
