#pragma once

#include <stdexcept>
#include <string>

#include "apps/kivtools/Language.h"

namespace kivtools {

/// Bad usage or bad input: one line of UTF-8 that names the value. The program prints it and ends with 2.
/// Example: `InputError(Say({"{0} is not an amount", "{0} nu este o sumă"}, Shown(text)))`.
class InputError : public std::runtime_error {
 public:
  explicit InputError(const Said& message) : std::runtime_error(message.Text()) {}
};

}  // namespace kivtools
