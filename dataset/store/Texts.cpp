#include "dataset/store/Texts.h"

#include <algorithm>

#include "kivtools/Errors.h"

namespace kiv::store {

std::uint32_t LargeValues::Add(std::string_view bytes) {
  if (count_ == 0xFFFFFFFFU) {
    throw Error("Dataset: prea multe valori lungi");
  }
  Value value;
  value.bytes = std::make_unique_for_overwrite<char[]>(bytes.size());
  value.size = static_cast<std::uint32_t>(bytes.size());
  std::ranges::copy(bytes, value.bytes.get());
  if (count_ / kChunk == chunks_.size()) {
    chunks_.push_back(std::make_shared<Chunk>());
  }
  chunks_[count_ / kChunk]->values[count_ % kChunk] = std::move(value);
  return count_++;
}

void Texts::MakeRoom(std::size_t wanted) {
  if (heap_.empty() || used_ + wanted > heap_.back().Size()) {
    if (heap_.size() == 0x10000) {
      throw Error("Dataset: textele unui camp depasesc 4 GiB");
    }
    // The first ones are small, for the sake of small tables.
    const std::size_t size = heap_.empty() ? 1024 : heap_.size() == 1 ? 8192 : kLargestBlock;
    heap_.emplace_back(std::max(size, std::min(kLargestBlock, wanted)));
    used_ = 0;
  }
}

std::uint32_t Texts::Append(std::string_view bytes, LargeValues& large) {
  const bool isLarge = bytes.size() > kLongest;
  const std::size_t wanted = sizeof(std::uint16_t) + (isLarge ? sizeof(std::uint32_t) : bytes.size());
  MakeRoom(wanted);
  std::uint32_t number = 0;
  if (isLarge) {
    number = large.Add(bytes);
    bytes = {reinterpret_cast<const char*>(&number), sizeof number};
  }
  const std::uint16_t size = isLarge ? kIsLarge : static_cast<std::uint16_t>(bytes.size());
  std::byte* const at = heap_.back().Data() + used_;
  std::memcpy(at, &size, sizeof size);
  if (!bytes.empty()) {
    std::memcpy(at + sizeof size, bytes.data(), bytes.size());
  }
  const std::uint32_t place = End();
  used_ += static_cast<std::uint32_t>(wanted);
  return place;
}

Texts::Taken Texts::AppendStored(std::span<const std::byte> stored, std::size_t most, std::span<std::uint32_t> places) {
  Taken taken;
  // Of the text there with its length, 0 where it cannot be taken.
  const auto sizeAt = [&](std::size_t at) {
    std::uint16_t size = kIsLarge;
    if (stored.size() - at >= sizeof size) {
      std::memcpy(&size, stored.data() + at, sizeof size);
    }
    return size <= most && stored.size() - at >= sizeof size + size ? sizeof size + size : 0;
  };
  std::size_t size = 0;
  while (taken.texts < places.size() && (size = sizeAt(taken.bytes)) != 0) {
    MakeRoom(size);
    // As many as the block has room for are copied at once.
    const std::size_t room = heap_.back().Size() - used_;
    std::size_t run = 0;
    do {
      places[taken.texts++] = End() + static_cast<std::uint32_t>(run);
      run += size;
    } while (taken.texts < places.size() && (size = sizeAt(taken.bytes + run)) != 0 && run + size <= room);
    std::memcpy(heap_.back().Data() + used_, stored.data() + taken.bytes, run);
    used_ += static_cast<std::uint32_t>(run);
    taken.bytes += run;
  }
  return taken;
}

std::uint32_t Texts::AddEntry(std::string_view bytes, LargeValues& large) {
  entries_.MakeWritable(entryCount_);
  entries_.Put(entryCount_, Append(bytes, large));
  return entryCount_++;
}

std::size_t Texts::MemoryUsed() const noexcept {
  std::size_t bytes = std::size_t{entryCount_} * sizeof(std::uint32_t);
  for (const Block& block : heap_) {
    bytes += block.Size();
  }
  return bytes;
}

}  // namespace kiv::store
