#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "kivtools/dataset/store/Block.h"
#include "kivtools/dataset/store/Plane.h"

namespace kiv::store {

/// Values of any length, each in memory of its own, numbered from 0. Nothing is ever overwritten or taken out, so a
/// copy shares all of it and stays as it was.
class LargeValues {
 public:
  /// The bytes of a value, aligned for UTF-16.
  [[nodiscard]] std::string_view At(std::uint32_t number) const noexcept {
    const Value& value = chunks_[number / kChunk]->values[number % kChunk];
    return {value.bytes.get(), value.size};
  }
  [[nodiscard]] std::uint32_t Count() const noexcept { return count_; }
  /// Adds a value; returns its number. Throws std::bad_alloc.
  std::uint32_t Add(std::string_view bytes);

 private:
  static constexpr std::uint32_t kChunk = 1024;
  struct Value {
    std::unique_ptr<char[]> bytes;
    std::uint32_t size = 0;
  };
  struct Chunk {
    std::array<Value, kChunk> values;
  };
  std::vector<std::shared_ptr<Chunk>> chunks_;
  std::uint32_t count_ = 0;
};

/// The texts of one field. Rows hold codes. While the field has a dictionary a code is the number of an entry, and
/// equal texts have one entry; without one it is the text's place in the heap, and equal texts may have several.
///
/// Heap and entries only grow; a copy shares them and stays as it was. A copy may only be read.
class Texts {
 public:
  /// Longer texts lie among the large values.
  static constexpr std::size_t kLongest = 32'000;
  /// In place of a length: the four bytes behind it are the number of a large value.
  static constexpr std::uint16_t kIsLarge = 0xFFFF;

  [[nodiscard]] bool HasDictionary() const noexcept { return hasDictionary_; }
  /// How many entries the dictionary has, 0 without one.
  [[nodiscard]] std::uint32_t EntryCount() const noexcept { return entryCount_; }
  /// The bytes of a code.
  [[nodiscard]] std::string_view Read(std::uint32_t code, const LargeValues& large) const noexcept {
    return AtPlace(hasDictionary_ ? entries_.At<std::uint32_t>(code) : code, large);
  }
  /// Appends a text to the heap; returns its place. Throws std::bad_alloc, and Error when 4 GiB are full.
  std::uint32_t Append(std::string_view bytes, LargeValues& large);
  struct Taken {
    std::size_t texts = 0;
    std::size_t bytes = 0;
  };
  /// Appends texts that stand one after another as the heap holds them, each behind its length, until all `places` are
  /// filled with their places or one comes that is cut off or has more than `most` bytes, which are at most kLongest.
  /// Throws as Append does.
  Taken AppendStored(std::span<const std::byte> stored, std::size_t most, std::span<std::uint32_t> places);
  /// Adds an entry to the dictionary; returns its code. Throws as Append does.
  std::uint32_t AddEntry(std::string_view bytes, LargeValues& large);
  /// The place in the heap that takes the code's stead when the dictionary goes.
  [[nodiscard]] std::uint32_t PlaceOfEntry(std::uint32_t code) const noexcept {
    return entries_.At<std::uint32_t>(code);
  }
  /// From now on codes are places. The caller has replaced those that exist.
  void DropDictionary() noexcept {
    hasDictionary_ = false;
    entries_.Clear();
    entryCount_ = 0;
  }
  /// The bytes of heap and entries.
  [[nodiscard]] std::size_t MemoryUsed() const noexcept;

  // Without a dictionary, where codes are places in the heap.

  /// Whether the text lies among the large values.
  [[nodiscard]] bool IsLargeAt(std::uint32_t place) const noexcept { return SizeAt(place) == kIsLarge; }
  /// The text behind its length, both as the heap holds them; of a large one kIsLarge alone.
  [[nodiscard]] std::span<const std::byte> StoredAt(std::uint32_t place) const noexcept {
    const std::uint16_t size = SizeAt(place);
    return {HeapAt(place), sizeof size + (size == kIsLarge ? 0 : size)};
  }
  /// Whether what lies behind the one place may be reached from the other.
  [[nodiscard]] static constexpr bool AreInOneBlock(std::uint32_t place, std::uint32_t other) noexcept {
    return place >> 16U == other >> 16U;
  }

 private:
  [[nodiscard]] const std::byte* HeapAt(std::uint32_t place) const noexcept {
    return heap_[place >> 16U].Data() + (place & 0xFFFFU);
  }
  /// Sees to it that the last block has room for that many bytes.
  void MakeRoom(std::size_t wanted);
  /// The place of what is appended next, for which there is room.
  [[nodiscard]] std::uint32_t End() const noexcept {
    return static_cast<std::uint32_t>(heap_.size() - 1) << 16U | used_;
  }
  [[nodiscard]] std::uint16_t SizeAt(std::uint32_t place) const noexcept {
    std::uint16_t size = 0;
    std::memcpy(&size, HeapAt(place), sizeof size);
    return size;
  }
  [[nodiscard]] std::string_view AtPlace(std::uint32_t place, const LargeValues& large) const noexcept {
    const std::byte* const bytes = HeapAt(place) + sizeof(std::uint16_t);
    const std::uint16_t size = SizeAt(place);
    if (size == kIsLarge) {
      std::uint32_t number = 0;
      std::memcpy(&number, bytes, sizeof number);
      return large.At(number);
    }
    return {reinterpret_cast<const char*>(bytes), size};
  }

  std::vector<Block> heap_;
  std::uint32_t used_ = 0;  // bytes of the last block of the heap
  Plane entries_{Plane::Width::Four};
  std::uint32_t entryCount_ = 0;
  bool hasDictionary_ = true;
};

}  // namespace kiv::store
