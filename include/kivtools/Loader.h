/// @file
/// Loading the library at run time, as a host does that does not link it.
#pragma once

#include <filesystem>
#include <memory>

#include "kivtools/Types.h"

namespace kiv {

namespace platform {
class DynamicLibrary;
}

/// A package loaded from a shared library and initialised; finalised and unloaded with this object. The functions of
/// the C interface are reached by their names.
///
///     LoadedPackage package("build/linux/lib/libKivToolsRePack.so");
///     auto* inLitere = package.Function<decltype(KivInLitere)>("KivInLitere");
class KIV_API LoadedPackage {
 public:
  /// Loads and initialises the library at a Text path (Windows-1250 on Windows, bytes on POSIX). Throws OsError where
  /// the system cannot load it, Error where it is no package or where its initialisation fails; then nothing stays
  /// loaded.
  explicit LoadedPackage(TextView path);

  /// The same for a path in the system's own form, which may hold any letter.
  /// Example: `LoadedPackage::FromNativePath(std::filesystem::current_path() / "libKivToolsRePack.so")`.
  [[nodiscard]] static LoadedPackage FromNativePath(const std::filesystem::path& path);

  ~LoadedPackage();
  LoadedPackage(const LoadedPackage&) = delete;
  LoadedPackage& operator=(const LoadedPackage&) = delete;

  /// The address exported under `name`. Throws Error, naming it, if there is none.
  [[nodiscard]] void* Symbol(const char* name) const;

  /// The exported function of that name and type. Throws Error, naming it, if there is none.
  template <class FunctionType>
  [[nodiscard]] FunctionType* Function(const char* name) const {
    return reinterpret_cast<FunctionType*>(Symbol(name));
  }

 private:
  struct NativePath {
    const std::filesystem::path& path;
  };
  explicit LoadedPackage(NativePath native);

  std::unique_ptr<platform::DynamicLibrary> library_;
  void (*finalize_)() = nullptr;
};

}  // namespace kiv
