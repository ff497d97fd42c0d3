#pragma once

#include <cstddef>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "apps/kivtools/Arguments.h"
#include "apps/kivtools/InputError.h"
#include "apps/kivtools/Language.h"
#include "apps/kivtools/Library.h"
#include "apps/kivtools/Output.h"

namespace kivtools {

enum ExitCode : int { kDone = 0, kCheckSaidNo = 1, kBadInput = 2 };

/// What a running command has at hand.
class Session {
 public:
  explicit Session(std::string_view command) : command_(command) {}

  Output out;

  /// The library, loaded with the first call.
  const Library& Lib() { return library_ ? *library_ : library_.emplace(); }
  /// Prints a message on standard error as this command's.
  void Report(const Said& message) const { WriteError("kivtools " + std::string(command_) + ": " + message.Text()); }

 private:
  std::string_view command_;
  std::optional<Library> library_;
};

/// An option of a command. `value` names what follows it ("N"); it is empty for a plain switch.
struct Option {
  std::string_view name;
  std::string_view value;
  Phrase help;
  std::span<const std::string_view> choices{};  ///< what `value` may be, or examples of it, for completion
};

/// For commands that take as many values as are given.
inline constexpr std::size_t kAnyNumber = std::numeric_limits<std::size_t>::max();

/// A command: what its usage is made from, and what it does. The program's help and dispatch come from these.
struct Command {
  std::string_view name;
  Phrase summary;              ///< one line without a full stop
  std::string_view arguments;  ///< as the usage line shows them
  std::size_t fewestValues;
  std::size_t mostValues;
  std::span<const Option> options;
  Phrase details;  ///< what --help says below the options, examples included
  /// Returns an ExitCode; throws InputError, or kiv::Error of the library, for what ends the program with kBadInput.
  int (*run)(Session&, const Arguments&);
  bool takesValues = false;                          ///< typed, of files or of a column of them; --help then says how
  std::span<const std::string_view> firstChoices{};  ///< what the first argument may be, for completion
};

/// Makes a command known to the program. One of these in a file of the folder commands/ is all that a command needs:
///
///     constexpr Command kCommand = {"strip", {"Take the Romanian diacritics off a text", "Scoate diacriticele"}, ...};
///     const Registration kRegistered(kCommand);
class Registration {
 public:
  /// The command has to stay as long as the program.
  explicit Registration(const Command& command) noexcept;

 private:
  friend std::vector<const Command*> Commands();
  const Command& command_;
  const Registration* next_;
};

/// All commands in the order of their names.
std::vector<const Command*> Commands();

/// Runs what the arguments of the program say; returns its exit code. Failures are told on standard error.
int RunProgram(std::span<const std::string> given);

}  // namespace kivtools
