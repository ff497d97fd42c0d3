#include "platform/Paths.h"

#include <cstdlib>

namespace kiv::platform {

std::filesystem::path PathFromText(TextView path) {
  return {path};
}

Text TextFromPath(const std::filesystem::path& path) {
  return path.native();
}

Text TemporaryFolder() {
  const char* const named = std::getenv("TMPDIR");
  Text folder = named != nullptr && *named != '\0' ? named : "/tmp";
  if (folder.back() != '/') {
    folder.push_back('/');
  }
  return folder;
}

}  // namespace kiv::platform
