/// @file
/// The registry through which dataset hosts find the in-memory engine.
#pragma once

#include <cstdint>
#include <filesystem>

#include "kivtools/Types.h"
#include "kivtools/dataset/Dataset.h"

namespace kiv {

/// A dataset engine as the registry knows it. Engines live as long as the process.
class DatasetEngine {
 public:
  virtual ~DatasetEngine() = default;
  /// The name that hosts ask for. Example: "DatasetLib".
  [[nodiscard]] virtual TextView Name() const noexcept = 0;
  /// The data formats that Load opens, as the endings of their files. Example: {"kdp", "xml", "csv"}.
  [[nodiscard]] virtual StringList Formats() const = 0;
  /// The dataset in a file, of the format that its ending names, case apart; a packet where it names none. Throws as
  /// LoadBinary, LoadXml and LoadCsv do. Example: `Load("linii.kdp").Name()`.
  [[nodiscard]] virtual Dataset Load(const std::filesystem::path& path) const = 0;
};

/// Makes an engine known; one of the same name is replaced. The registry keeps the reference, not a copy.
/// Example: `RegisterDatasetEngine(engine)`; from then on `FindDatasetEngine(engine.Name())` finds it.
KIV_API void RegisterDatasetEngine(const DatasetEngine& engine);

/// The engine of that name, null if none is registered. Before Initialize() there is none.
/// Example: `FindDatasetEngine("DatasetLib")->Load("linii.kdp")`.
[[nodiscard]] KIV_API const DatasetEngine* FindDatasetEngine(TextView name) noexcept;

}  // namespace kiv
