#include "platform/SystemError.h"

#include "platform/Paths.h"

namespace kiv::platform {

void SystemStatus::Throw(TextView operation) const {
  throw SystemError(operation, code_);
}

void SystemStatus::Throw(TextView operation, const std::filesystem::path& path) const {
  throw SystemError(Text(operation) + ": " + ShownPath(path.native()), code_);
}

OsError SystemError(TextView context, std::int32_t code) {
  return {code, Text(context) + ": " + SystemText(code)};
}

}  // namespace kiv::platform
