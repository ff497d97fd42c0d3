#include "platform/Paths.h"

#include <cstdlib>

#include "core/WideText.h"
#include "kivtools/Utf8.h"

namespace kiv::platform {

std::filesystem::path PathFromText(TextView path) {
  return {path};
}

Text TextFromPath(const std::filesystem::path& path) {
  return path.native();
}

Text ShownPath(NativeView path) {
  Text shown;
  shown.reserve(path.size());
  for (std::size_t at = 0; at < path.size();) {
    const auto [character, length] = utf8::DecodeAt(path, at);
    if (length == 0) {
      return Text(path);
    }
    shown.push_back(character <= 0xFFFF ? ShownByte(static_cast<char16_t>(character)) : '?');
    at += length;
  }
  return shown;
}

TextView FolderWithSeparator(TextView path) noexcept {
  return path.substr(0, path.find_last_of('/') + 1);
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
