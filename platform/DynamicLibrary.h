#pragma once

#include <filesystem>

namespace kiv::platform {

/// A shared library loaded at run time; unloaded with this object.
class DynamicLibrary {
 public:
  /// Loads the library. Throws OsError with the path and the system's code where the system cannot.
  explicit DynamicLibrary(const std::filesystem::path& path);
  ~DynamicLibrary();
  DynamicLibrary(const DynamicLibrary&) = delete;
  DynamicLibrary& operator=(const DynamicLibrary&) = delete;

  /// The address that the library exports under `name`, null if it exports none.
  [[nodiscard]] void* Symbol(const char* name) const noexcept;

 private:
  void* handle_ = nullptr;
};

}  // namespace kiv::platform
