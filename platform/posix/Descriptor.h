#pragma once

#include <fcntl.h>

#include "platform/Files.h"

namespace kiv::platform {

inline int Descriptor(const FileHandle& handle) noexcept {
  return static_cast<int>(handle.Get());
}

/// What a name is relative to; the working folder has a number of its own, and no descriptor is below 0.
inline int Base(const Folder& at) noexcept {
  return at.IsOpen() || &at != &Folder::Working() ? Descriptor(at.Handle()) : AT_FDCWD;
}

}  // namespace kiv::platform
