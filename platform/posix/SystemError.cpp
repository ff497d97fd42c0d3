#include "platform/SystemError.h"

#include <cerrno>
#include <system_error>

namespace kiv::platform {

OsError SystemError(TextView context, std::int32_t code) {
  return {code, Text(context) + ": " + std::system_category().message(code)};
}

OsError LastSystemError(TextView context) {
  return SystemError(context, errno);
}

}  // namespace kiv::platform
