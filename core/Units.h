#pragma once

#include <tuple>

/// The library's own units as the package table starts them and shuts them down.
namespace kiv::units {

/// A unit that only counts.
struct WithoutBodies {
  static void StartUp() {}
  static void ShutDown() {}
};

/// Registers the in-memory dataset engine.
struct DatasetLib {
  static void StartUp();
  static void ShutDown() {}
};

/// The special folders are the system's own; nothing has to be started for them.
struct Shfolder : WithoutBodies {};

/// Fills the version-resource key names; releases them.
struct CEVersionInfo {
  static void StartUp();
  static void ShutDown();
};

/// Reads the temporary folder and fills the month tables; releases them.
struct WinUtil {
  static void StartUp();
  static void ShutDown();
};

struct LargeFontScaler : WithoutBodies {};
struct BmpRoutines : WithoutBodies {};

/// Tries code page 1250 and settles what is used in its place.
struct WideTools {
  static void StartUp();
  static void ShutDown() {}
};

struct UTreeAVL2 : WithoutBodies {};

/// Creates the lifetime tracker's registry and lock list; frees them.
struct UDepanarePointer {
  static void StartUp();
  static void ShutDown();
};

struct UPanelElastic : WithoutBodies {};

/// All of them, in the order in which they start. The package table is made from this.
using InStartOrder = std::tuple<DatasetLib, Shfolder, CEVersionInfo, WinUtil, LargeFontScaler, BmpRoutines, WideTools,
                                UTreeAVL2, UDepanarePointer, UPanelElastic>;

}  // namespace kiv::units
