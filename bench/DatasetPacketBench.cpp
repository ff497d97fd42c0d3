#include <benchmark/benchmark.h>

#include <cstring>
#include <filesystem>
#include <memory>

#include "bench/DatasetPackets.h"
#include "bench/SqliteLines.h"
#include "bench/Values.h"

// A million rows written to a sink and read from memory, beside a database in memory that is serialized and
// deserialized, and a copy of as many bytes. Whoever reads then adds up the amounts of all rows. Then the file of a
// working day: 40,000 rows with 300 edits.

namespace {

using namespace bench;

constexpr std::size_t kDay = 40'000;
constexpr std::size_t kEdits = 300;

void SaveKiv(benchmark::State& state) {
  const kiv::Dataset dataset = MakeDataset(kMostLines, kiv::kKey);
  std::size_t size = 0;
  for (auto _ : state) {
    size = 0;
    kiv::WriteBinary(dataset, [&](std::span<const std::uint8_t> bytes) {
      benchmark::DoNotOptimize(bytes.data());
      size += bytes.size();
    });
  }
  Require(size == Written(dataset).size(), "size of a packet");
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(size));
}

void SaveFloor(benchmark::State& state) {
  const Bytes packet = Written(MakeDataset(kMostLines, kiv::kKey));
  Bytes copy(packet.size());
  for (auto _ : state) {
    std::memcpy(copy.data(), packet.data(), packet.size());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(packet.size()));
}

void LoadKiv(benchmark::State& state, kiv::FieldFlags idFlags) {
  const Bytes packet = Written(MakeDataset(kMostLines, idFlags));
  const std::int64_t sum = SumOfLines();
  for (auto _ : state) {
    const kiv::Dataset dataset = Read(packet);
    Require(SumOf(dataset) == sum, "sum of a dataset that was read");
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(packet.size()));
}

SqliteLines FilledDatabase() {
  SqliteLines database;
  for (const Line& line : Lines()) {
    database.Add(line);
  }
  database.End();
  return database;
}

void SaveSqlite(benchmark::State& state) {
  const SqliteLines database = FilledDatabase();
  sqlite3_int64 size = 0;
  for (auto _ : state) {
    sqlite3_free(sqlite3_serialize(database.Database().get(), "main", &size, 0));
  }
  state.SetBytesProcessed(state.iterations() * size);
}

void LoadSqlite(benchmark::State& state) {
  sqlite3_int64 size = 0;
  const std::unique_ptr<unsigned char, decltype(&sqlite3_free)> packet(
      sqlite3_serialize(FilledDatabase().Database().get(), "main", &size, 0), &sqlite3_free);
  const std::int64_t sum = SumOfLines();
  for (auto _ : state) {
    const SqliteDatabase database = OpenSqlite();
    // The database takes its memory over.
    auto* const own = static_cast<unsigned char*>(sqlite3_malloc64(static_cast<sqlite3_uint64>(size)));
    std::memcpy(own, packet.get(), static_cast<std::size_t>(size));
    sqlite3_deserialize(database.get(), "main", own, size, size, SQLITE_DESERIALIZE_FREEONCLOSE);
    Require(NumberOf(Prepare(database, "select sum(suma) from linii")) == sum, "sum of a database that was read");
  }
  state.SetBytesProcessed(state.iterations() * size);
}

/// Not on the disk when it returns: what a disk does is not this library's.
kiv::SaveOptions QuickSave() {
  return {.backup = false, .flush = false, .notes = {}};
}

std::filesystem::path DayFile() {
  return std::filesystem::temp_directory_path() / "kivtools-bench.kdp";
}

kiv::Dataset MakeDay() {
  kiv::Dataset dataset = MakeDataset(kDay, kiv::kKey);
  for (std::uint32_t i = 0; i < kEdits; ++i) {
    dataset.Update(kiv::RowId{i * 131}, {{"suma", kiv::Currency::FromRaw(i)}, {"nume", "alt nume"}});
  }
  return dataset;
}

void SaveDay(benchmark::State& state) {
  const kiv::Dataset day = MakeDay();
  for (auto _ : state) {
    kiv::SaveBinary(day, DayFile(), QuickSave());
  }
  Require(SumOf(kiv::LoadBinary(DayFile())) == SumOf(day), "file of a day");
  std::filesystem::remove(DayFile());
}

void LoadDay(benchmark::State& state) {
  const kiv::Dataset day = MakeDay();
  kiv::SaveBinary(day, DayFile(), QuickSave());
  for (auto _ : state) {
    benchmark::DoNotOptimize(kiv::LoadBinary(DayFile()));
  }
  std::filesystem::remove(DayFile());
}

[[maybe_unused]] const bool kRegistered = [] {
  const auto slow = [](const char* name, auto run) {
    benchmark::RegisterBenchmark(name, run)->Unit(benchmark::kMillisecond);
  };
  slow("Packet/save_1000000/kiv", &SaveKiv);
  slow("Packet/save_1000000/sqlite_serialize", &SaveSqlite);
  slow("Packet/save_1000000/floor_memcpy", &SaveFloor);
  slow("Packet/load_1000000_no_key/kiv", [](benchmark::State& state) { LoadKiv(state, kiv::FieldFlags::None); });
  slow("Packet/load_1000000_no_key/sqlite_deserialize_and_read", &LoadSqlite);
  slow("Packet/load_1000000_key/kiv", [](benchmark::State& state) { LoadKiv(state, kiv::kKey); });
  slow("Packet/load_1000000_key/sqlite_deserialize_and_read", &LoadSqlite);
  slow("Packet/save_40000_with_300_edits/kiv", &SaveDay);
  slow("Packet/load_40000_with_300_edits/kiv", &LoadDay);
  return true;
}();

}  // namespace
