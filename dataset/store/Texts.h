#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
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

  [[nodiscard]] bool HasDictionary() const noexcept { return hasDictionary_; }
  /// How many entries the dictionary has, 0 without one.
  [[nodiscard]] std::uint32_t EntryCount() const noexcept { return entryCount_; }
  /// The bytes of a code.
  [[nodiscard]] std::string_view Read(std::uint32_t code, const LargeValues& large) const noexcept {
    return AtPlace(hasDictionary_ ? entries_.At<std::uint32_t>(code) : code, large);
  }
  /// Appends a text to the heap; returns its place. Throws std::bad_alloc, and Error when 4 GiB are full.
  std::uint32_t Append(std::string_view bytes, LargeValues& large);
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

 private:
  /// In place of a length: the four bytes behind it are the number of a large value.
  static constexpr std::uint16_t kIsLarge = 0xFFFF;
  [[nodiscard]] std::string_view AtPlace(std::uint32_t place, const LargeValues& large) const noexcept {
    const std::byte* const at = heap_[place >> 16U].Data() + (place & 0xFFFFU);
    std::uint16_t size = 0;
    std::memcpy(&size, at, sizeof size);
    if (size == kIsLarge) {
      std::uint32_t number = 0;
      std::memcpy(&number, at + sizeof size, sizeof number);
      return large.At(number);
    }
    return {reinterpret_cast<const char*>(at) + sizeof size, size};
  }

  std::vector<Block> heap_;
  std::uint32_t used_ = 0;  // bytes of the last block of the heap
  Plane entries_{Plane::Width::Four};
  std::uint32_t entryCount_ = 0;
  bool hasDictionary_ = true;
};

}  // namespace kiv::store
