#include <benchmark/benchmark.h>

#include <array>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <pugixml.hpp>
#include <string>

#include "bench/DatasetPackets.h"
#include "bench/Values.h"
#include "kivtools/DateTime.h"
#include "kivtools/dataset/Csv.h"
#include "kivtools/dataset/Xml.h"

// 200,000 rows written as XML beside snprintf, which writes the same bytes of the rows, and read beside a reader that
// makes a tree, of which all values are taken. A million rows of comma-separated values made into a file of a dataset,
// beside polars, which only reads them, types and all, on one thread.

namespace {

using namespace bench;

constexpr std::size_t kXmlRows = 200'000;

std::string Xml(const kiv::Dataset& dataset) {
  std::string text;
  kiv::WriteXml(dataset, [&](auto bytes) { text.append(reinterpret_cast<const char*>(bytes.data()), bytes.size()); });
  return text;
}

void SaveXmlKiv(benchmark::State& state) {
  const kiv::Dataset dataset = MakeDataset(kXmlRows, kiv::kKey);
  std::size_t size = 0;
  for (auto _ : state) {
    size = 0;
    kiv::WriteXml(dataset, [&](std::span<const std::uint8_t> bytes) {
      benchmark::DoNotOptimize(bytes.data());
      size += bytes.size();
    });
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(size));
}

/// A row as snprintf writes it; returns how many bytes that are.
std::size_t PrintRow(const Line& line, std::array<char, 400>& row) {
  const kiv::DateTime::Parts date = kiv::DateTime(line.day).Decode();
  const std::int64_t whole = line.sum / kiv::Currency::kPerUnit;
  std::array<char, 8> decimals{};
  std::snprintf(decimals.data(), decimals.size(), ".%04d", static_cast<int>(line.sum % kiv::Currency::kPerUnit));
  std::size_t kept = 5;
  while (kept > 0 && (decimals[kept - 1] == '0' || decimals[kept - 1] == '.')) {
    decimals[--kept] = '\0';
  }
  return static_cast<std::size_t>(
      std::snprintf(row.data(), row.size(),
                    "   <r id=\"%d\" zi=\"%04d-%02d-%02d\" suma=\"%lld%s\" pret=\"%.15g\" oras=\"%s\" nume=\"%s\"/>\n",
                    line.id, date.year, date.month, date.day, static_cast<long long>(whole), decimals.data(),
                    line.price, line.town.c_str(), line.name.c_str()));
}

void SaveXmlSnprintf(benchmark::State& state) {
  std::array<char, 400> row{};
  std::string rows;
  for (const Line& line : std::span(Lines()).first(kXmlRows)) {
    rows.append(row.data(), PrintRow(line, row));
  }
  Require(Xml(MakeDataset(kXmlRows, kiv::kKey)).find(rows) != std::string::npos, "rows written by snprintf");
  for (auto _ : state) {
    for (const Line& line : std::span(Lines()).first(kXmlRows)) {
      benchmark::DoNotOptimize(PrintRow(line, row));
    }
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(rows.size()));
}

void LoadXmlKiv(benchmark::State& state) {
  const kiv::Dataset dataset = MakeDataset(kXmlRows, kiv::kKey);
  const std::string text = Xml(dataset);
  const std::int64_t sum = SumOf(dataset);
  for (auto _ : state) {
    std::string_view left = text;
    const kiv::Dataset read = kiv::ReadXml([&](std::span<std::uint8_t> into) {
      const std::size_t count = std::min(into.size(), left.size());
      std::memcpy(into.data(), left.data(), count);
      left.remove_prefix(count);
      return count;
    });
    Require(SumOf(read) == sum, "sum of XML that was read");
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

std::int64_t TenThousandths(const char* text) {
  const char* const end = text + std::strlen(text);
  std::int64_t whole = 0;
  const char* at = std::from_chars(text, end, whole).ptr;
  std::int64_t decimals = 0;
  int places = 0;
  for (at += *at == '.' ? 1 : 0; *at != '\0'; ++at, ++places) {
    decimals = decimals * 10 + (*at - '0');
  }
  for (; places < 4; ++places) {
    decimals *= 10;
  }
  return whole * kiv::Currency::kPerUnit + decimals;
}

void LoadXmlPugixml(benchmark::State& state) {
  const kiv::Dataset dataset = MakeDataset(kXmlRows, kiv::kKey);
  const std::string text = Xml(dataset);
  const std::int64_t sum = SumOf(dataset);
  for (auto _ : state) {
    pugi::xml_document document;
    Require(document.load_buffer(text.data(), text.size()), "pugixml");
    std::vector<Line> lines;
    std::int64_t read = 0;
    for (const pugi::xml_node row : document.child("kivdata").child("table").child("rows")) {
      pugi::xml_attribute value = row.first_attribute();
      Line line{};
      line.id = value.as_int();
      value = value.next_attribute();
      line.day = static_cast<std::int32_t>(std::strlen(value.value()));
      value = value.next_attribute();
      line.sum = TenThousandths(value.value());
      value = value.next_attribute();
      line.price = value.as_double();
      value = value.next_attribute();
      line.town = value.value();
      line.name = value.next_attribute().value();
      read += line.sum;
      lines.push_back(std::move(line));
    }
    Require(read == sum, "sum of what pugixml has read");
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

/// A file that goes when the benchmark does.
class TemporaryFile {
 public:
  explicit TemporaryFile(const char* name) : path_(std::filesystem::temp_directory_path() / name) {}
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() { std::filesystem::remove(path_); }
  [[nodiscard]] const std::filesystem::path& Path() const noexcept { return path_; }

 private:
  std::filesystem::path path_;
};

void ConvertCsvKiv(benchmark::State& state) {
  const TemporaryFile csv("kivtools-bench.csv");
  const TemporaryFile packet("kivtools-bench-convert.kdp");
  kiv::SaveCsv(MakeDataset(kMostLines, kiv::FieldFlags::None), csv.Path());
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    kiv::SaveBinary(kiv::LoadCsv(csv.Path()), packet.Path(), {.backup = false, .flush = false, .notes = {}});
    state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
  }
  const kiv::Dataset read = kiv::LoadBinary(packet.Path());
  Require(read.RowCount() == kMostLines && SumOf(read) == SumOfLines(), "a converted file");
}

/// Reads the file once and prints the seconds, then how many rows there are and what their amounts add up to.
constexpr const char* kPolars = R"(
const polars = require(process.argv[1]);
const start = process.hrtime.bigint();
const rows = polars.readCSV(process.argv[2], {tryParseDates: true});
const end = process.hrtime.bigint();
console.log(Number(end - start) / 1e9, rows.height, rows.getColumn('suma').sum().toFixed(2));
)";

void ConvertCsvPolars(benchmark::State& state) {
  const TemporaryFile csv("kivtools-bench-polars.csv");
  const TemporaryFile script("kivtools-bench-polars.js");
  const std::filesystem::path polars = std::filesystem::path(KIV_BENCH_PEERS) / "node_modules/nodejs-polars";
  kiv::SaveCsv(MakeDataset(kMostLines, kiv::FieldFlags::None), csv.Path());
  std::ofstream(script.Path()) << kPolars;
  const std::string command = "POLARS_MAX_THREADS=1 node -e \"$(cat " + script.Path().string() + ")\" " +
                              polars.string() + " " + csv.Path().string();
  for (auto _ : state) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> process(popen(command.c_str(), "r"), &pclose);
    double seconds = 0;
    std::size_t rows = 0;
    double sum = 0;
    Require(process != nullptr && std::fscanf(process.get(), "%lf %zu %lf", &seconds, &rows, &sum) == 3, "polars");
    Require(rows == kMostLines && std::abs(sum - static_cast<double>(SumOfLines()) / 1e4) < 1, "sum of polars");
    state.SetIterationTime(seconds);
  }
}

bool HasPolars() {
  const auto modules = std::filesystem::path(KIV_BENCH_PEERS) / "node_modules";
  const bool has = std::filesystem::exists(modules / "nodejs-polars-linux-x64-gnu");
  if (!has) {
    std::fputs("polars is not installed (scripts/bench-peers) and is left out\n", stderr);
  }
  return has;
}

[[maybe_unused]] const bool kRegistered = [] {
  const auto slow = [](const char* name, auto run) {
    return benchmark::RegisterBenchmark(name, run)->Unit(benchmark::kMillisecond);
  };
  slow("Xml/save_200000/kiv", &SaveXmlKiv);
  slow("Xml/save_200000/snprintf", &SaveXmlSnprintf);
  slow("Xml/load_200000/kiv", &LoadXmlKiv);
  slow("Xml/load_200000/pugixml", &LoadXmlPugixml);
  slow("Csv/convert_1000000/kiv", &ConvertCsvKiv)->UseManualTime();
  if (HasPolars()) {
    slow("Csv/convert_1000000/polars_read_only", &ConvertCsvPolars)->UseManualTime();
  }
  return true;
}();

}  // namespace
