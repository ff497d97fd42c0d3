#include "kivtools/DatasetLib.h"

#include <algorithm>

#include "core/Units.h"
#include "kivtools/Ascii.h"
#include "kivtools/dataset/Csv.h"
#include "kivtools/dataset/Xml.h"
#include "platform/Paths.h"

namespace kiv {
namespace {

/// The library's own engine.
class OwnEngine final : public DatasetEngine {
 public:
  [[nodiscard]] TextView Name() const noexcept override { return "DatasetLib"; }
  [[nodiscard]] StringList Formats() const override { return {"kdp", "xml", "csv"}; }
  [[nodiscard]] Dataset Load(const std::filesystem::path& path) const override {
    Text ending = platform::TextFromPath(path.extension());
    std::ranges::transform(ending, ending.begin(), ascii::ToLower<char>);
    return ending == ".xml" ? LoadXml(path) : ending == ".csv" ? LoadCsv(path) : LoadBinary(path);
  }
};

std::vector<const DatasetEngine*>& Engines() {
  static std::vector<const DatasetEngine*> engines;
  return engines;
}

auto FindByName(TextView name) {
  return std::ranges::find(Engines(), name, &DatasetEngine::Name);
}

}  // namespace

void RegisterDatasetEngine(const DatasetEngine& engine) {
  if (const auto found = FindByName(engine.Name()); found != Engines().end()) {
    *found = &engine;
  } else {
    Engines().push_back(&engine);
  }
}

const DatasetEngine* FindDatasetEngine(TextView name) noexcept {
  const auto found = FindByName(name);
  return found == Engines().end() ? nullptr : *found;
}

void units::DatasetLib::StartUp() {
  static const OwnEngine engine;
  RegisterDatasetEngine(engine);
}

}  // namespace kiv
