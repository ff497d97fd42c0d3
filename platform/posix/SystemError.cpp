#include "platform/SystemError.h"

#include <cerrno>
#include <system_error>

namespace kiv::platform {

bool SystemStatus::IsMissing() const noexcept {
  return code_ == ENOENT || code_ == ENOTDIR;
}

bool SystemStatus::IsExisting() const noexcept {
  return code_ == EEXIST || code_ == ENOTEMPTY;
}

bool SystemStatus::IsBusy() const noexcept {
  return code_ == EWOULDBLOCK;
}

bool SystemStatus::IsDenied() const noexcept {
  return code_ == EACCES || code_ == EPERM;
}

bool SystemStatus::IsOutOfHandles() const noexcept {
  return code_ == EMFILE || code_ == ENFILE;
}

SystemStatus LastStatus() noexcept {
  return SystemStatus(errno != 0 ? errno : EIO);
}

Text SystemText(std::int32_t code) {
  return std::system_category().message(code);
}

}  // namespace kiv::platform
