#include "kivtools/WinUtil/Paths.h"

#include <algorithm>
#include <array>

#include "kivtools/Host.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/SpecialFolders.h"

namespace kiv {
namespace {

Text SpecialFolderText(platform::SpecialFolder folder, TextView operation) {
  return platform::TextFromPath(platform::PathOfSpecialFolder(folder, operation));
}

/// Whether something has the name; a link that leads nowhere has it too.
bool Exists(const Text& path) {
  platform::EntryInfo info;
  return !platform::Query(platform::Folder::Working(), platform::PathFromText(path), platform::Links::AsThemselves,
                          info)
              .Failed();
}

struct NamedCapability {
  TextView name;
  host::DeviceCapability capability;
};

constexpr std::array<NamedCapability, 8> kDeviceSizes = {{
    {"HORZSIZE", host::DeviceCapability::HorizontalSize},
    {"VERTSIZE", host::DeviceCapability::VerticalSize},
    {"HORZRES", host::DeviceCapability::HorizontalResolution},
    {"VERTRES", host::DeviceCapability::VerticalResolution},
    {"PHYSICALWIDTH", host::DeviceCapability::PhysicalWidth},
    {"PHYSICALHEIGHT", host::DeviceCapability::PhysicalHeight},
    {"PHYSICALOFFSETX", host::DeviceCapability::PhysicalOffsetHorizontal},
    {"PHYSICALOFFSETY", host::DeviceCapability::PhysicalOffsetVertical},
}};

}  // namespace

Text ReadWindowsTempPath() {
  return platform::TemporaryFolder();
}

Text GetMyDocumentsFolder() {
  return SpecialFolderText(platform::SpecialFolder::Documents, "GetMyDocumentsFolder");
}

Text GetDesktopPath() {
  return SpecialFolderText(platform::SpecialFolder::Desktop, "GetDesktopPath");
}

Text GetAppDataFolder() {
  return SpecialFolderText(platform::SpecialFolder::ApplicationData, "GetAppDataFolder");
}

Text RemoveDoubleSlash(TextView path) {
  constexpr TextView kNetwork = R"(\\)";
  // What follows the mark is cleaned by itself, so that a run of three at the front keeps three.
  const bool network = path.starts_with(kNetwork);
  Text clean(network ? kNetwork : TextView());
  clean.reserve(path.size());
  const std::size_t start = clean.size();
  for (const char letter : path.substr(start)) {
    const char meant = letter == '/' ? '\\' : letter;
    if (meant != '\\' || clean.size() == start || clean.back() != '\\') {
      clean.push_back(meant);
    }
  }
  return clean;
}

Text GetNewTempFileName(TextView prefix, TextView extension) {
  if (TempFilePath.ends_with('/') || TempFilePath.ends_with('\\')) {
    TempFilePath.pop_back();
  }
  const Text start = TempFilePath + platform::kPathSeparator + Text(prefix) + "_";
  const Text end = "." + Text(extension);
  Text name;
  std::int64_t counter = 0;
  do {
    ++counter;
    name = start + std::to_string(counter) + end;
  } while (Exists(name));
  return name;
}

Text DeviceInfo(Handle deviceContext) {
  const host::Screen& screen = host::Current().GetScreen();
  Text info;
  for (const auto& [name, capability] : kDeviceSizes) {
    info.append(info.empty() ? "" : "; ").append(name).append("=");
    info += std::to_string(screen.Capability(deviceContext, capability));
  }
  return info;
}

}  // namespace kiv
