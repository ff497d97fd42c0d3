#include "platform/Program.h"

#include <system_error>

namespace kiv::platform {

std::filesystem::path ProgramFile() {
  std::error_code failed;
  return std::filesystem::read_symlink("/proc/self/exe", failed);
}

}  // namespace kiv::platform
