#include "platform/SpecialFolders.h"

#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <string>

#include "platform/Files.h"
#include "platform/SystemError.h"
#include "platform/posix/UserDirs.h"

namespace kiv::platform {
namespace {

/// An absolute path without separators at its end; empty for anything else, which does not count.
std::string Absolute(const char* path) {
  std::string folder = path != nullptr && *path == '/' ? path : "";
  while (folder.size() > 1 && folder.back() == '/') {
    folder.pop_back();
  }
  return folder;
}

std::string FromEnvironment(const char* variable) {
  return Absolute(std::getenv(variable));
}

std::string HomeFolder(TextView operation) {
  std::string home = FromEnvironment("HOME");
  if (home.empty()) {
    std::array<char, 16'384> texts{};
    passwd entry{};
    passwd* found = nullptr;
    const int code = getpwuid_r(geteuid(), &entry, texts.data(), texts.size(), &found);
    home = found != nullptr ? Absolute(found->pw_dir) : "";
    if (home.empty()) {
      throw SystemError(Text(operation) + ": HOME", code != 0 ? code : ENOENT);
    }
  }
  return home;
}

std::string ConfigurationFolder(TextView operation) {
  std::string folder = FromEnvironment("XDG_CONFIG_HOME");
  return folder.empty() ? HomeFolder(operation) + "/.config" : folder;
}

/// The text of a file of at most that size, as far as it goes; empty where there is no such file.
std::string SmallFile(const std::filesystem::path& path, std::size_t limit, TextView operation) {
  File file;
  const SystemStatus opened = file.Open(path, OpenMode::ReadFile);
  if (opened.IsMissing()) {
    return {};
  }
  opened.OrThrow(operation, path);
  std::string text(limit, '\0');
  std::size_t count = 0;
  file.ReadAt(0, {reinterpret_cast<std::uint8_t*>(text.data()), text.size()}, count).OrThrow(operation, path);
  text.resize(count);
  return text;
}

std::string UserFolder(const char* variable, const char* without, TextView operation) {
  constexpr std::size_t kLimit = 65'536;  // the file has eight lines
  const std::string home = HomeFolder(operation);
  const std::filesystem::path list = ConfigurationFolder(operation) + "/user-dirs.dirs";
  std::string folder = FolderFromUserDirs(SmallFile(list, kLimit, operation), variable, home);
  if (folder.empty()) {
    folder = FromEnvironment(variable);
  }
  return folder.empty() ? Absolute((home + without).c_str()) : folder;
}

}  // namespace

std::filesystem::path PathOfSpecialFolder(SpecialFolder folder, TextView operation) {
  switch (folder) {
    case SpecialFolder::Desktop:
      return UserFolder("XDG_DESKTOP_DIR", "/Desktop", operation);
    case SpecialFolder::Documents:
      return UserFolder("XDG_DOCUMENTS_DIR", "", operation);
    case SpecialFolder::ApplicationData:
      break;
  }
  return ConfigurationFolder(operation);
}

}  // namespace kiv::platform
