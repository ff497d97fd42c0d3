#include "platform/WindowSystem.h"

#include <cerrno>

#include "platform/SystemError.h"

namespace kiv::platform {

std::unique_ptr<ThreadWindows> WindowSystem::OfThisThread(TextView operation) const {
  throw SystemError(operation, ENOTSUP);
}

}  // namespace kiv::platform
