// Columns that contradict themselves are refused or read, and all of them are given back; what was read is handed out
// and read again as it was. Buffers are as long as their columns say: of memory that is not there nobody can know.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <optional>

#include "fuzz/Property.h"
#include "kivtools/dataset/Arrow.h"
#include "tests/dataset/HandMadeArrow.h"

namespace {

using Data = FuzzedDataProvider;

constexpr const char* kFormats[] = {
    "c",   "C",   "s",   "S",   "i",    "I",    "l",    "L",    "f",    "g", "b", "d:19,4", "d:9,0", "tdD", "tdm",
    "tts", "ttm", "ttu", "ttn", "tss:", "tsm:", "tsu:", "tsn:", "w:16", "u", "U", "z",      "Z",     "+l",  "n"};
constexpr std::size_t kWidest = 16;

kiv::HandMade NextColumn(Data& data, std::int64_t rows, bool mayHaveEntries = true) {
  kiv::HandMade column;
  column.name = data.ConsumeRandomLengthString(3);
  column.name.erase(std::remove(column.name.begin(), column.name.end(), '\0'), column.name.end());
  column.format = data.PickValueInArray(kFormats);
  column.length = rows;
  column.offset = data.ConsumeIntegralInRange<std::int64_t>(0, 9);
  const auto elements = static_cast<std::size_t>(rows + column.offset);
  // Numbers that are near each other, as offsets and days are, or any.
  column.values.resize((elements + 1) * kWidest);
  const bool isSmall = data.ConsumeBool();
  const std::vector<std::uint8_t> bytes =
      data.ConsumeBytes<std::uint8_t>(isSmall ? elements + 1 : column.values.size());
  if (isSmall && !bytes.empty()) {
    const std::size_t width = column.format == "U" || column.format == "Z" ? 8 : 4;
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i <= elements; ++i) {
      sum += i < bytes.size() ? bytes[i] % 8U : 0;
      std::memcpy(column.values.data() + i * width, &sum, sizeof sum);
    }
    column.bytes.assign(8 * (elements + 2), 'a');
  } else {
    std::copy(bytes.begin(), bytes.end(), column.values.begin());
    if (std::string("uUzZ").find(column.format) != std::string::npos) {
      // Any offsets at all, then: their bytes are not there.
      column.bytes.clear();
    }
  }
  const std::string text = data.ConsumeRandomLengthString(40);
  std::copy_n(text.begin(), std::min(text.size(), column.bytes.size()), column.bytes.begin());
  if (data.ConsumeBool()) {
    column.valid = data.ConsumeBytes<std::uint8_t>(elements / 8 + 1);
    column.valid.resize(elements / 8 + 1);
  }
  column.nulls = data.ConsumeIntegralInRange<std::int64_t>(-1, 2);
  if (mayHaveEntries && data.ConsumeIntegralInRange(0, 3) == 0) {
    column.dictionary.push_back(NextColumn(data, data.ConsumeIntegralInRange<std::int64_t>(0, 9), false));
  }
  return column;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  Data data(bytes, size);
  const auto rows = data.ConsumeIntegralInRange<std::int64_t>(0, 40);
  kiv::HandMadeBatch batch;
  for (int columns = data.ConsumeIntegralInRange(1, 4); columns > 0; --columns) {
    batch.push_back(NextColumn(data, rows));
  }
  kiv::HandMadeStream stream({batch, batch});
  const int damage = data.ConsumeIntegralInRange(0, 9);
  const auto number = data.ConsumeIntegralInRange<std::int64_t>(-2, 3);
  stream.damageBatch = [&](ArrowArray& array) {
    ArrowArray& column = *array.children[0];
    std::int64_t* const numbers[] = {&array.n_children, &array.n_buffers,   &array.null_count,
                                     &column.n_buffers, &column.n_children, &column.null_count};
    if (damage < 6) {
      *numbers[damage] = number;
    }
  };
  stream.failingCall = data.ConsumeBool() ? data.ConsumeIntegralInRange<std::size_t>(0, 3) : ~std::size_t{0};
  const kiv::ReadLimits limits = {.maxRows = 100, .maxFields = 3, .maxBytes = 10'000};
  std::optional<kiv::Dataset> read;
  ArrowArrayStream opened = stream.Open();
  try {
    read = kiv::ImportArrow(opened, "t", {}, limits);
  } catch (const kiv::PacketError&) {
  }
  REQUIRE(opened.release == nullptr && stream.Live() == 0);
  if (!read) {
    return 0;
  }
  const auto fields = read->GetSchema().Fields();
  ArrowArrayStream again;
  kiv::ExportArrow(read->TakeSnapshot(), again);
  const kiv::Dataset same = kiv::ImportArrow(again, "t", {.fields = {fields.begin(), fields.end()}});
  REQUIRE(same.RowCount() == read->RowCount());
  for (const kiv::RowId row : same.Rows()) {
    for (std::size_t i = 0; i < fields.size(); ++i) {
      REQUIRE(same.Get(row, same.FieldAt(i)) == read->Get(row, read->FieldAt(i)));
    }
  }
  return 0;
}
