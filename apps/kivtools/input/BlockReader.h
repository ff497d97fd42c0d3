#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <span>

namespace kivtools {

/// Where bytes come from: stores at most `capacity` bytes and returns how many, 0 at the end.
using ByteSource = std::function<std::size_t(char* into, std::size_t capacity)>;

/// Reads a source in large blocks and shows the bytes not yet consumed as one piece, which the user of it may change in
/// place. What is shown grows only as far as the user asks for more before consuming.
class BlockReader {
 public:
  explicit BlockReader(ByteSource source);

  /// The bytes read and not consumed; valid until ReadMore().
  [[nodiscard]] std::span<char> Window() noexcept { return {buffer_.get() + begin_, end_ - begin_}; }
  /// Drops bytes at the window's front.
  void Consume(std::size_t count) noexcept { begin_ += count; }
  /// Adds a block at the window's end. False, and no change, at the end of the source.
  bool ReadMore();

 private:
  void MakeRoom();

  ByteSource source_;
  std::size_t capacity_;
  std::unique_ptr<char[]> buffer_;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
};

}  // namespace kivtools
