#include "kivtools/dataset/store/Plane.h"

#include <algorithm>

namespace kiv::store {

void Plane::Provide(std::uint32_t row) {
  const std::uint32_t block = BlockOf(row);
  if (block >= blocks_.size()) {
    blocks_.resize(block + 1);
  }
  std::uint32_t rows = kBlockRows;
  if (block == 0) {
    rows = std::max(row < 64 ? 64U : row < 512 ? 512U : kBlockRows, firstRows_);
  }
  const std::size_t size = BytesOf(width_, rows);
  if (blocks_[block]) {
    blocks_[block] = blocks_[block].Copy(size);
  } else {
    blocks_[block] = filled_ == Filled::Zeros ? Block::Zeroed(size) : Block(size);
  }
  if (block == 0) {
    firstRows_ = rows;
  }
}

void Plane::MakeAllWritable() {
  for (Block& block : blocks_) {
    if (block.IsShared()) {
      block = block.Copy(block.Size());
    }
  }
}

std::uint32_t Plane::WritableEnd(std::uint32_t row) const noexcept {
  if (!IsWritable(row)) {
    return row;
  }
  return BlockOf(row) == 0 ? firstRows_ : (BlockOf(row) + 1) * kBlockRows;
}

}  // namespace kiv::store
