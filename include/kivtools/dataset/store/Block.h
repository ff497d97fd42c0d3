#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>

namespace kiv::store {

/// The most that one allocation takes, but for index segments and large values: the granularity at which 32-bit Windows
/// hands out address space.
inline constexpr std::size_t kLargestBlock = 65'536;

/// A piece of memory with several owners, freed by the last. An owner that is not alone may read it only; copies of
/// columns, texts and logs for a snapshot are copies of these.
class Block {
 public:
  Block() = default;
  /// Memory that holds nothing yet. Throws std::bad_alloc.
  explicit Block(std::size_t size) : Block(std::make_unique_for_overwrite<std::byte[]>(size), size) {}
  /// Memory full of zero bytes. Throws std::bad_alloc.
  static Block Zeroed(std::size_t size) { return {std::make_unique<std::byte[]>(size), size}; }
  ~Block() { Release(); }
  Block(const Block& other) noexcept : data_(other.data_), control_(other.control_) {
    if (control_ != nullptr) {
      control_->owners.fetch_add(1, std::memory_order_relaxed);
    }
  }
  Block(Block&& other) noexcept
      : data_(std::exchange(other.data_, nullptr)), control_(std::exchange(other.control_, nullptr)) {}
  Block& operator=(Block other) noexcept {
    std::swap(data_, other.data_);
    std::swap(control_, other.control_);
    return *this;
  }

  explicit operator bool() const noexcept { return data_ != nullptr; }
  [[nodiscard]] std::byte* Data() const noexcept { return data_; }
  /// In bytes.
  [[nodiscard]] std::size_t Size() const noexcept { return control_ == nullptr ? 0 : control_->size; }
  /// Whether there are other owners. What they have read has been read when this says no.
  [[nodiscard]] bool IsShared() const noexcept {
    return control_ != nullptr && control_->owners.load(std::memory_order_acquire) > 1;
  }
  /// A copy of `size` bytes or of all, if there are fewer, in memory of its own; bytes beyond are zero.
  [[nodiscard]] Block Copy(std::size_t size) const {
    Block copy(size);
    const std::size_t kept = size < Size() ? size : Size();
    if (kept > 0) {
      std::memcpy(copy.data_, data_, kept);
    }
    if (size > kept) {
      std::memset(copy.data_ + kept, 0, size - kept);
    }
    return copy;
  }

 private:
  /// Apart from the memory, so that a full block is not a few bytes above 64 KiB.
  struct Control {
    std::atomic<std::uint32_t> owners;
    std::uint32_t size;
  };
  Block(std::unique_ptr<std::byte[]> memory, std::size_t size)
      : control_(new Control{1, static_cast<std::uint32_t>(size)}) {
    data_ = memory.release();
  }
  void Release() noexcept {
    if (control_ != nullptr && control_->owners.fetch_sub(1, std::memory_order_acq_rel) == 1) {
      delete[] data_;
      delete control_;
    }
  }

  std::byte* data_ = nullptr;
  Control* control_ = nullptr;
};

}  // namespace kiv::store
