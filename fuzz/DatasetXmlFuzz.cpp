// Any bytes are XML of a dataset or are refused with a place in them, whichever pieces they come in. What is accepted
// other readers read as the same values; what is written is well-formed for them, and is read again as it was.
#include <optional>

#include "fuzz/Property.h"
#include "kivtools/dataset/Xml.h"
#include "tests/dataset/PacketBytes.h"
#include "tests/dataset/XmlOracles.h"

namespace {

constexpr kiv::ReadLimits kLimits = {.maxRows = 100'000, .maxBytes = 16U << 20U};

void RequireSameForOthers(std::span<const std::uint8_t> bytes) {
  const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  const std::string seen = kiv::SeenByUs(kiv::SourceOf(bytes));
  REQUIRE(kiv::SeenByExpat(text) == seen);
  REQUIRE(kiv::SeenByPugixml(text) == seen);
}

kiv::PacketBytes Xml(const kiv::Dataset& dataset) {
  kiv::PacketBytes bytes;
  kiv::WriteXml(dataset, kiv::AppendTo(bytes));
  return bytes;
}

/// Nothing where the text is refused, which names a place in it.
std::optional<kiv::Dataset> Read(std::span<const std::uint8_t> bytes, std::size_t step) {
  try {
    return kiv::ReadXml(kiv::SourceOf(bytes, step), kLimits);
  } catch (const kiv::TextPacketError& error) {
    REQUIRE(error.Line() >= 1 && error.Column() >= 1 && error.Offset() <= 3 * bytes.size());
    return std::nullopt;
  }
}

/// Whether the text says that it is in another encoding than UTF-8, which the others do not know.
bool HasOtherEncoding(std::string_view text) {
  return text.substr(0, 200).find("1250") != std::string_view::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span<const std::uint8_t> bytes(data, size);
  // Byte by byte no row is there as a whole before it is begun: all are read the long way.
  const std::optional<kiv::Dataset> slowly = Read(bytes, 1);
  std::optional<kiv::Dataset> read = Read(bytes, 2 + size % 1000);
  REQUIRE(slowly.has_value() == read.has_value());
  if (!read) {
    return 0;
  }
  const kiv::PacketBytes written = Xml(*read);
  REQUIRE(Xml(*slowly) == written);
  if (!HasOtherEncoding({reinterpret_cast<const char*>(data), size})) {
    RequireSameForOthers(bytes);
  }
  RequireSameForOthers(written);
  REQUIRE(Xml(kiv::ReadXml(kiv::SourceOf(written))) == written);
  read->Changes().CancelChanges();
  return 0;
}
