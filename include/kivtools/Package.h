/// @file
/// The package frame: what a loader needs to start the library's units and to shut them down.
#pragma once

#include <cstdint>

#include "kivtools/Types.h"

namespace kiv {

/// One unit's start-up and shut-down procedure. Neither is ever null.
struct UnitEntry {
  void (*initialization)();
  void (*finalization)();
};

/// The units of the package in the order of their initialization.
struct PackageInfoTable {
  std::int32_t unitCount;
  const UnitEntry* units;
};

/// What the load entry has recorded about this module.
struct PackageModule {
  /// True once the system's loader has called the load entry; false in a host that links the library statically.
  bool isLibrary = false;
  /// The system's handle of the module: its base address.
  Handle handle = 0;
  /// True between process attach and process detach.
  bool attached = false;
};

/// The module's record. Example: in a host that links the static library, `GetPackageModule().isLibrary` is false.
[[nodiscard]] KIV_API const PackageModule& GetPackageModule() noexcept;

extern "C" {

/// The address of the package information table: 79 entries, of which the last ten are the library's own units.
/// No side effect.
///
///     GetPackageInfoTable()->unitCount   // 79
[[nodiscard]] KIV_API const PackageInfoTable* GetPackageInfoTable() noexcept;

/// Runs every unit's initialization in table order. Calls nest: a unit's body runs on the first call only. If a body
/// throws, the units before it are finalized again and the exception goes on to the caller; the library is then as it
/// was before the call. To be called from one thread at a time; a host of another compiler calls KivInitialize().
///
///     Initialize();   // from now on TempFilePath names the system's temporary folder
KIV_API void Initialize();

/// Runs every unit's finalization in the reverse order. A unit's body runs on the call that matches the first
/// Initialize(). Afterwards Initialize() gives a working library again.
///
///     Finalize();   // the exported Texts (TempFilePath, NumeLuna, ...) are released
KIV_API void Finalize();

/// The load entry, called by the system's loader with the module's handle. Reason 1 is process attach, 0 process
/// detach, other reasons do nothing. It records the module and starts nothing: units start with Initialize().
///
///     PackageLoadEntry(module, 1);   // GetPackageModule().attached is now true
KIV_API void PackageLoadEntry(Handle module, std::uint32_t reason) noexcept;

}  // extern "C"
}  // namespace kiv
