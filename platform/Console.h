#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What a command-line program asks of the system. Names and arguments are UTF-8 here, bytes are passed on as they are.
namespace kiv::platform {

enum class StandardStream : std::uint8_t { Input, Output, Error };

/// Sets the process up for UTF-8 on the terminal, and for a reader that goes away to be an error of the write instead
/// of the end of the process. What it changed on the terminal is put back with this object.
class PreparedConsole {
 public:
  PreparedConsole();
  ~PreparedConsole();
  PreparedConsole(const PreparedConsole&) = delete;
  PreparedConsole& operator=(const PreparedConsole&) = delete;

 private:
  unsigned formerCodePage_ = 0;
};

/// The arguments of main() as UTF-8, without the program's name.
std::vector<std::string> ArgumentsAsUtf8(int count, char** arguments);

/// Whether a person sees, or types, what goes through the stream.
bool IsTerminal(StandardStream stream) noexcept;

/// The path in an environment variable, nothing where it is not set or empty.
std::optional<std::filesystem::path> PathFromEnvironment(const char* name);

/// Writes all bytes to a standard stream. Throws OsError for a full disk, a reader that is gone, a closed stream.
void WriteAll(StandardStream stream, std::string_view bytes);

/// Bytes to read in large blocks: a file or standard input.
class InputStream {
 public:
  /// Opens a file. Throws OsError where it cannot be read; a folder is no file.
  static InputStream Open(const std::filesystem::path& path);
  /// Standard input as it is, without translation of line ends.
  static InputStream Standard();

  InputStream(InputStream&& other) noexcept;
  ~InputStream();
  InputStream& operator=(InputStream&&) = delete;

  /// Reads what there is, `capacity` bytes at most; 0 at the end. Throws OsError.
  std::size_t Read(char* into, std::size_t capacity);
  /// The size in bytes of a file; nothing for what has no size, such as a pipe.
  [[nodiscard]] std::optional<std::uint64_t> Size() const noexcept;

 private:
  InputStream(std::intptr_t handle, bool owned) noexcept : handle_(handle), owned_(owned) {}
  std::intptr_t handle_;
  bool owned_;
};

}  // namespace kiv::platform
