#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <vector>

#include "tests/CEVersionInfo/MemorySource.h"
#include "tools/CEVersionInfo/ExecutableImage.h"
#include "tools/CEVersionInfo/VersionTexts.h"

namespace kiv {
namespace {

namespace fs = std::filesystem;

/// The programs and libraries of the Wine installation that scripts/wine-root makes.
std::vector<fs::path> RealFiles() {
  std::vector<fs::path> files;
  const char* const named = std::getenv("KIVTOOLS_WINE_ROOT");
  const fs::path root = fs::path(named != nullptr ? named : "/var/cache/kivtools/wine32") / "root/prefix/drive_c";
  std::error_code missing;
  for (const auto& entry : fs::recursive_directory_iterator(root, missing)) {
    const auto extension = entry.path().extension();
    if (entry.is_regular_file() && (extension == ".dll" || extension == ".exe")) {
      files.push_back(entry.path());
    }
  }
  return files;
}

std::size_t BytesRead(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
  version::MemorySource source({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
  version::ReadVersionTexts(source, 0);
  return source.read;
}

/// Files per second, warm; beside it the most bytes read of a file with a version resource and of one without.
void WineFiles(benchmark::State& state) {
  const std::vector<fs::path> files = RealFiles();
  if (files.empty()) {
    state.SkipWithError("no Wine installation: make it with scripts/wine-root");
    return;
  }
  std::size_t most[2] = {};
  std::size_t count[2] = {};
  for (const fs::path& path : files) {
    const bool without = version::ReadVersionTexts(path).strings[0] == "<info not available>";
    most[without ? 1 : 0] = std::max(most[without ? 1 : 0], BytesRead(path));
    ++count[without ? 1 : 0];
  }
  for (auto _ : state) {
    for (const fs::path& path : files) {
      benchmark::DoNotOptimize(version::ReadVersionTexts(path));
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(files.size()));
  state.counters["with"] = static_cast<double>(count[0]);
  state.counters["without"] = static_cast<double>(count[1]);
  state.counters["most_bytes_with"] = static_cast<double>(most[0]);
  state.counters["most_bytes_without"] = static_cast<double>(most[1]);
}
BENCHMARK(WineFiles)->Name("VersionInfo/wine/kiv")->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kiv
