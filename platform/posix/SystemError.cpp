#include "platform/SystemError.h"

#include <cerrno>
#include <system_error>

namespace kiv::platform {

Text SystemText(std::int32_t code) {
  return std::system_category().message(code);
}

OsError SystemError(TextView context, std::int32_t code) {
  return {code, Text(context) + ": " + SystemText(code)};
}

OsError LastSystemError(TextView context) {
  return SystemError(context, errno);
}

}  // namespace kiv::platform
