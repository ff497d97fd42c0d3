#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>

namespace kivtools {

/// Text that grows at its end: what a string is, with appending short pieces in a few instructions, for what is done to
/// every line of a file.
class TextBuffer {
 public:
  [[nodiscard]] std::string_view View() const noexcept { return {bytes_.get(), size_}; }
  [[nodiscard]] std::size_t Size() const noexcept { return size_; }

  TextBuffer& operator+=(std::string_view text) {
    std::ranges::copy(text, Room(text.size()));
    return *this;
  }
  TextBuffer& operator+=(char character) {
    *Room(1) = character;
    return *this;
  }
  /// Appends what `change` makes of each character.
  template <class Change>
  void AppendChanged(std::string_view text, const Change& change) {
    std::ranges::transform(text, Room(text.size()), change);
  }
  /// Takes back all but the first `size` characters.
  void Cut(std::size_t size) noexcept { size_ = size; }

 private:
  char* Room(std::size_t count) {
    const std::size_t before = size_;
    if (capacity_ - before < count) {
      Grow(before + count);
    }
    size_ = before + count;
    return bytes_.get() + before;
  }
  void Grow(std::size_t wanted) {
    const std::size_t capacity = std::max(wanted, 2 * capacity_);
    auto larger = std::make_unique_for_overwrite<char[]>(capacity);
    std::copy_n(bytes_.get(), size_, larger.get());
    bytes_ = std::move(larger);
    capacity_ = capacity;
  }

  std::unique_ptr<char[]> bytes_;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

}  // namespace kivtools
