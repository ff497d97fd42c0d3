#include "apps/kivtools/system/Paths.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>

#include "apps/kivtools/system/Console.h"
#include "kivtools/Ascii.h"

namespace kivtools {

std::filesystem::path PathFromUtf8(std::string_view name) {
  return {name};
}

std::string Utf8FromPath(const std::filesystem::path& path) {
  return path.native();
}

std::string LibraryPath(const std::filesystem::path& path) {
  return path.native();
}

bool LibraryPathsAreUtf8() noexcept {
  return true;
}

std::string LowerName(std::string_view name) {
  std::string lower(name);
  std::ranges::transform(lower, lower.begin(), kiv::ascii::ToLower<char>);
  return lower;
}

std::vector<std::filesystem::path> HomeFolders() {
  std::vector<std::filesystem::path> folders;
  if (auto named = PathFromEnvironment("HOME")) {
    folders.push_back(*std::move(named));
  }
  if (const passwd* const user = getpwuid(getuid()); user != nullptr && user->pw_dir != nullptr) {
    folders.emplace_back(user->pw_dir);
  }
  return folders;
}

}  // namespace kivtools
