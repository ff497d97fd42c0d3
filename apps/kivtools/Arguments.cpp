#include "apps/kivtools/Arguments.h"

#include <algorithm>

#include "apps/kivtools/Command.h"
#include "apps/kivtools/InputError.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/Suggestion.h"

namespace kivtools {

namespace {

bool HasOption(const Command& command, std::string_view name) noexcept {
  return std::ranges::find(command.options, name, &Option::name) != command.options.end();
}

}  // namespace

Arguments::Arguments(const Command& command, std::span<const std::string> given) {
  bool optionsEnded = false;
  while (!given.empty()) {
    const std::string& argument = given.front();
    given = given.subspan(1);
    if (!optionsEnded && argument == "-o" && HasOption(command, "out")) {
      TakeOption(command, "--out", given);
    } else if (optionsEnded || !argument.starts_with("--")) {
      values_.push_back(argument);
    } else if (argument == "--") {
      optionsEnded = true;
    } else {
      TakeOption(command, argument, given);
    }
  }
  if (values_.size() < command.fewestValues) {
    throw InputError(IsMissing(command.arguments));
  }
  if (values_.size() > command.mostValues) {
    throw InputError(OneTooMany(values_[command.mostValues]));
  }
}

void Arguments::TakeOption(const Command& command, std::string_view argument, std::span<const std::string>& rest) {
  const std::size_t equals = argument.find('=');
  const std::string_view name = argument.substr(2, equals == std::string_view::npos ? equals : equals - 2);
  const auto known = std::find_if(command.options.begin(), command.options.end(),
                                  [name](const Option& option) { return option.name == name; });
  if (known == command.options.end()) {
    std::vector<std::string_view> names(command.options.size());
    std::ranges::transform(command.options, names.begin(), &Option::name);
    throw InputError(Say({"{0} is not an option of this command{1}", "{0} nu este o opțiune a acestei comenzi{1}"},
                         Shown(argument), DidYouMean(name, names, "--")));
  }
  if (Has(name)) {
    throw InputError(IsSecond(argument));
  }
  GivenOption option{known->name, {}};
  if (known->value.empty()) {
    if (equals != std::string_view::npos) {
      throw InputError(
          Say({"{0}: this option takes no value", "{0}: această opțiune nu primește valoare"}, Shown(argument)));
    }
  } else if (equals != std::string_view::npos) {
    option.value = argument.substr(equals + 1);
  } else if (!rest.empty()) {
    option.value = rest.front();
    rest = rest.subspan(1);
  } else {
    throw InputError(NeedsBehind(argument, known->value));
  }
  options_.push_back(std::move(option));
}

const Arguments::GivenOption* Arguments::Find(std::string_view option) const noexcept {
  const auto found = std::find_if(options_.begin(), options_.end(),
                                  [option](const GivenOption& given) { return given.name == option; });
  return found == options_.end() ? nullptr : &*found;
}

std::optional<std::string> Arguments::ValueOf(std::string_view option) const {
  const GivenOption* const found = Find(option);
  return found == nullptr ? std::nullopt : std::optional<std::string>(found->value);
}

Said OneTooMany(std::string_view argument) {
  return Say({"{0} is one argument too many", "{0} este un argument în plus"}, Shown(argument));
}

Said IsSecond(std::string_view option) {
  return Say({"{0} is given a second time", "{0} este dată a doua oară"}, Shown(option));
}

Said NeedsBehind(std::string_view option, std::string_view value) {
  return Say({"{0} needs {1} behind it", "{0} cere {1} după ea"}, Shown(option), value);
}

}  // namespace kivtools
