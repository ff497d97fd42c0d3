#pragma once

#include <stdexcept>
#include <string>

namespace kivtools {

/// Bad usage or bad input: one line of UTF-8 that names the value. The program prints it and ends with 2.
/// Example: `InputError("\"12a\" is not an amount")`.
class InputError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace kivtools
