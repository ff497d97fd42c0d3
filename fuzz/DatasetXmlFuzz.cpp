// Any bytes are XML of a dataset or are refused with a place in them. What is accepted other readers read as the same
// values; what is written is well-formed for them, and is read again as it was.
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

/// Whether the text says that it is in another encoding than UTF-8, which the others do not know.
bool HasOtherEncoding(std::string_view text) {
  return text.substr(0, 200).find("1250") != std::string_view::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span<const std::uint8_t> bytes(data, size);
  std::optional<kiv::Dataset> read;
  try {
    read = kiv::ReadXml(kiv::SourceOf(bytes, 1 + size % 1000), kLimits);
  } catch (const kiv::TextPacketError& error) {
    REQUIRE(error.Line() >= 1 && error.Column() >= 1 && error.Offset() <= 3 * size);
    return 0;
  }
  if (!HasOtherEncoding({reinterpret_cast<const char*>(data), size})) {
    RequireSameForOthers(bytes);
  }
  const kiv::PacketBytes written = Xml(*read);
  RequireSameForOthers(written);
  REQUIRE(Xml(kiv::ReadXml(kiv::SourceOf(written))) == written);
  read->Changes().CancelChanges();
  return 0;
}
