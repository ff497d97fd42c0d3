#include "apps/kivtools/system/SystemError.h"

namespace kivtools {

SystemError::SystemError(const std::string& context, std::int32_t code)
    : SystemError(context, std::error_code(code, std::system_category())) {}

SystemError::SystemError(const std::string& context, const std::error_code& error)
    : InputError(context + ": " + error.message() + " (error " + std::to_string(error.value()) + ")"),
      code_(error.value()) {}

}  // namespace kivtools
