/// @file
/// The registry through which dataset hosts find the in-memory engine.
#pragma once

#include <cstdint>

#include "kivtools/Types.h"

namespace kiv {

/// A dataset engine as the registry knows it. Engines live as long as the process.
class DatasetEngine {
 public:
  virtual ~DatasetEngine() = default;
  /// The name that hosts ask for. Example: "DatasetLib".
  [[nodiscard]] virtual TextView Name() const noexcept = 0;
  /// The data formats the engine opens for whoever found it here. Example: an empty list.
  [[nodiscard]] virtual StringList Formats() const = 0;
};

/// Makes an engine known; one of the same name is replaced. The registry keeps the reference, not a copy.
/// Example: `RegisterDatasetEngine(engine)`; from then on `FindDatasetEngine(engine.Name())` finds it.
KIV_API void RegisterDatasetEngine(const DatasetEngine& engine);

/// The engine of that name, null if none is registered. Before Initialize() there is none.
/// Example: `FindDatasetEngine("DatasetLib")->Formats()` is empty: files are opened by LoadBinary, not through the
/// registry.
[[nodiscard]] KIV_API const DatasetEngine* FindDatasetEngine(TextView name) noexcept;

}  // namespace kiv
