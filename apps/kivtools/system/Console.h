#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "apps/kivtools/system/SystemError.h"

/// What a command-line program asks of the system. Names and arguments are UTF-8 here, bytes are passed on as they are.
namespace kivtools {

enum class StandardStream : std::uint8_t { Input, Output, Error };

/// Sets the process up: UTF-8 on the terminal; a reader that goes away is an error of the write instead of the end of
/// the process; a standard stream that the process was started without is an error of its use, not the next file that
/// is opened. What it changed on the terminal is put back with this object, and where the user ends the program.
class PreparedConsole {
 public:
  PreparedConsole();
  ~PreparedConsole();
  PreparedConsole(const PreparedConsole&) = delete;
  PreparedConsole& operator=(const PreparedConsole&) = delete;
};

/// From now on a user who ends the program (Ctrl-C) finds so many columns of the terminal's present line empty and the
/// cursor at its begin; 0 for a line that stays as it is. Works while there is a PreparedConsole.
void WipeWhenInterrupted(std::size_t columns) noexcept;

/// The arguments of main() as UTF-8, without the program's name.
std::vector<std::string> ArgumentsAsUtf8(int count, char** arguments);

/// The columns of the terminal on which a person sees, or types, what goes through the stream; 80 for a terminal that
/// does not tell. Nothing where the stream is no terminal.
std::optional<std::size_t> TerminalWidth(StandardStream stream) noexcept;

/// The path in an environment variable, nothing where it is not set or empty.
std::optional<std::filesystem::path> PathFromEnvironment(const char* name);

/// Nobody reads the other end of the pipe any more.
class ReaderGone : public SystemError {
 public:
  using SystemError::SystemError;
};

/// Writes all bytes to a standard stream. Throws ReaderGone, and SystemError for a full disk or a closed stream.
void WriteAll(StandardStream stream, std::string_view bytes);

}  // namespace kivtools
