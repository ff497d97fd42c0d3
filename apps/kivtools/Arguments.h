#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "apps/kivtools/Language.h"

namespace kivtools {

struct Command;

/// The arguments of one command, sorted by its table of options. What begins with "--" is an option (until a lone
/// "--"), everything else a value: so "-5" is an amount and "-" is standard input. "-o" is short for "--out" where
/// there is that.
class Arguments {
 public:
  /// Throws InputError, naming the argument, for unknown options, missing option values and a wrong number of values.
  Arguments(const Command& command, std::span<const std::string> given);

  /// The values in their order.
  [[nodiscard]] const std::vector<std::string>& Values() const noexcept { return values_; }
  /// Whether the option is given.
  [[nodiscard]] bool Has(std::string_view option) const noexcept { return Find(option) != nullptr; }
  /// What is given with the option, nothing where it is not given.
  [[nodiscard]] std::optional<std::string> ValueOf(std::string_view option) const;

 private:
  struct GivenOption {
    std::string_view name;
    std::string value;
  };
  [[nodiscard]] const GivenOption* Find(std::string_view option) const noexcept;
  void TakeOption(const Command& command, std::string_view argument, std::span<const std::string>& rest);

  std::vector<std::string> values_;
  std::vector<GivenOption> options_;
};

/// What is wrong with an argument.
Said OneTooMany(std::string_view argument);
Said IsSecond(std::string_view option);
Said NeedsBehind(std::string_view option, std::string_view value);

}  // namespace kivtools
