#include "apps/kivtools/system/Paths.h"

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

}  // namespace kivtools
