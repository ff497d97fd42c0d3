#include "platform/Program.h"

#include <windows.h>

#include <string>

namespace kiv::platform {

std::filesystem::path ProgramFile() {
  constexpr std::size_t kLongest = 32768;  // the longest path that Windows has
  std::wstring name(MAX_PATH, L'\0');
  while (true) {
    const DWORD length = GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size()));
    if (length < name.size()) {
      name.resize(length);
      return {name};
    }
    if (name.size() >= kLongest) {
      return {};
    }
    name.resize(name.size() * 2);
  }
}

}  // namespace kiv::platform
