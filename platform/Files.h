#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>

namespace kiv::platform {

/// A regular file opened for reading at any position; closed with this object. Others may write, rename and delete the
/// file meanwhile.
class ReadOnlyFile {
 public:
  /// Opens the file. Empty for what does not exist, may not be read, or is no regular file (folders, pipes, devices):
  /// opening those could wait for ever.
  static std::optional<ReadOnlyFile> Open(const std::filesystem::path& path) noexcept;

  ~ReadOnlyFile();
  ReadOnlyFile(ReadOnlyFile&& other) noexcept;
  ReadOnlyFile& operator=(ReadOnlyFile&&) = delete;

  /// The size in bytes when the file was opened.
  [[nodiscard]] std::uint64_t Size() const noexcept { return size_; }

  /// Reads bytes from `offset` on; returns how many there were, fewer than wanted at the end of the file or where the
  /// system cannot read.
  std::size_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> buffer) const noexcept;

 private:
  ReadOnlyFile(std::intptr_t handle, std::uint64_t size) noexcept : handle_(handle), size_(size) {}

  std::intptr_t handle_;
  std::uint64_t size_;
};

}  // namespace kiv::platform
