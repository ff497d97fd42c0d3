#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "apps/kivtools/Arguments.h"
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
  void Report(std::string_view message) const {
    WriteError("kivtools " + std::string(command_) + ": " + std::string(message));
  }

 private:
  std::string_view command_;
  std::optional<Library> library_;
};

/// An option of a command. `value` names what follows it ("N"); it is empty for a plain switch.
struct Option {
  std::string_view name;
  std::string_view value;
  std::string_view help;
};

/// A row of the table of commands.
struct Command {
  std::string_view name;
  std::string_view summary;    ///< one line
  std::string_view arguments;  ///< as the usage line shows them
  std::size_t fewestValues;
  std::size_t mostValues;
  std::span<const Option> options;
  std::string_view details;  ///< what --help says below the options, examples included
  int (*run)(Session&, const Arguments&);
};

extern const Command kCheckCommand;
extern const Command kCnpCommand;
extern const Command kCompareVersionsCommand;
extern const Command kConvertCommand;
extern const Command kDateCommand;
extern const Command kGradeCommand;
extern const Command kInvoiceCommand;
extern const Command kMoneyCommand;
extern const Command kStripCommand;
extern const Command kVersionCommand;
extern const Command kWordsCommand;

}  // namespace kivtools
