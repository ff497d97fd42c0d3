#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace kivtools {

/// Bytes to read in large blocks: a file, a pipe or standard input. Errors bear the name that it was opened with.
class InputStream {
 public:
  /// What may be opened: only files, which nobody has to be waited for, or pipes and devices too.
  enum class What : std::uint8_t { File, Anything };
  /// Opens what is not a folder. Throws SystemError, and InputError for what it is not to be.
  static InputStream Open(const std::filesystem::path& path, What what = What::Anything);
  /// Standard input as it is, without translation of line ends.
  static InputStream Standard();

  InputStream(InputStream&& other) noexcept;
  ~InputStream();
  InputStream& operator=(InputStream&&) = delete;

  /// Reads what there is, `capacity` bytes at most; 0 at the end. Throws SystemError.
  std::size_t Read(char* into, std::size_t capacity);
  /// The size in bytes of a file; nothing for what has no size, such as a pipe.
  [[nodiscard]] std::optional<std::uint64_t> Size() const noexcept;

 private:
  InputStream(std::intptr_t handle, bool owned, std::string name) noexcept
      : handle_(handle), owned_(owned), name_(std::move(name)) {}

  std::intptr_t handle_;
  bool owned_;
  std::string name_;
};

}  // namespace kivtools
