#include "apps/kivtools/system/SystemError.h"

namespace kivtools {

SystemError::SystemError(const Said& context, std::int32_t code)
    : SystemError(context, std::error_code(code, std::system_category())) {}

SystemError::SystemError(const Said& context, const std::error_code& error)
    : InputError(Say({"{0}: {1} (error {2})", "{0}: {1} (eroarea {2})"}, context, error.message(), error.value())),
      code_(error.value()) {}

}  // namespace kivtools
