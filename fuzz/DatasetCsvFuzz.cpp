// Any bytes are comma-separated values or are refused with a place in them; what was read is written and read again as
// it was, in each form.
#include <optional>

#include "fuzz/Property.h"
#include "kivtools/dataset/Csv.h"
#include "tests/dataset/PacketBytes.h"

namespace {

constexpr kiv::ReadLimits kLimits = {.maxRows = 100'000, .maxBytes = 16U << 20U};

kiv::PacketBytes Csv(const kiv::Dataset& dataset, const kiv::CsvWriteOptions& options) {
  kiv::PacketBytes bytes;
  kiv::WriteCsv(dataset, kiv::AppendTo(bytes), options);
  return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  if (size < 2) {
    return 0;
  }
  const auto numbers = static_cast<kiv::CsvNumbers>(bytes[0] & 1U);
  const auto encoding = static_cast<kiv::CsvEncoding>((bytes[0] >> 1U) % 3);
  const std::span<const std::uint8_t> text(bytes + 2, size - 2);
  std::optional<kiv::Dataset> read;
  try {
    read = kiv::ReadCsv(kiv::SourceOf(text, 1 + bytes[1]), "t", {.encoding = encoding, .numbers = numbers}, kLimits);
  } catch (const kiv::TextPacketError& error) {
    REQUIRE(error.Line() >= 1 && error.Offset() <= text.size());
    return 0;
  }
  const kiv::CsvWriteOptions written{.separator = ";,\t"[bytes[1] % 3], .numbers = numbers, .mark = bytes[1] > 127};
  const kiv::PacketBytes once = Csv(*read, written);
  kiv::CsvReadOptions types{.separator = written.separator, .numbers = numbers};
  types.fields.assign(read->GetSchema().Fields().begin(), read->GetSchema().Fields().end());
  const kiv::Dataset again = kiv::ReadCsv(kiv::SourceOf(once), "t", types, kLimits);
  REQUIRE(again.RowCount() == read->RowCount());
  REQUIRE(Csv(again, written) == once);
  return 0;
}
