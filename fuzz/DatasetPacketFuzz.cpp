// Any bytes are a packet or are refused; what was read is written and read again as it was. Checksums are made right
// first, so that what is in the chunks is reached.
#include <optional>
#include <span>

#include "fuzz/Property.h"
#include "tests/dataset/PacketBytes.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  constexpr kiv::ReadLimits kLimits = {.maxRows = 100'000, .maxBytes = 16U << 20U};
  kiv::PacketBytes packet(bytes, bytes + size);
  kiv::Seal(packet);
  std::optional<kiv::Dataset> read;
  try {
    read = kiv::ReadBack(packet, kLimits);
  } catch (const kiv::PacketError& error) {
    REQUIRE(error.Offset() <= packet.size());
    return 0;
  }
  const kiv::PacketBytes written = kiv::Written(*read);
  const kiv::PacketBytes again = kiv::Written(kiv::ReadBack(written));
  // But for the identity that each file has of its own.
  REQUIRE(std::ranges::equal(std::span(written).subspan(kiv::packet::kHeaderSize),
                             std::span(again).subspan(kiv::packet::kHeaderSize)));
  return 0;
}
