// Any bytes are a packet or are refused; what was read is written and read again as it was. Checksums are made right
// first, so that what is in the chunks is reached.
#include <optional>
#include <span>

#include "fuzz/Property.h"
#include "tests/dataset/PacketBytes.h"

namespace {

constexpr kiv::ReadLimits kLimits = {.maxRows = 100'000, .maxBytes = 16U << 20U};
/// What a packet has of its own: its header, and nothing else.
constexpr std::size_t kOwn = kiv::packet::kHeaderSize;

void RequireSame(const kiv::PacketBytes& written, const kiv::PacketBytes& again) {
  REQUIRE(std::ranges::equal(std::span(written).subspan(kOwn), std::span(again).subspan(kOwn)));
}

/// Everything that a receiver may ask of a delta can be asked.
void AskAll(const kiv::Delta& delta) {
  for (std::uint32_t ticket = 0; ticket < delta.Count(); ++ticket) {
    const bool isDeleted = delta.Kind(ticket) == kiv::ChangeKind::Delete;
    for (std::size_t field = 0; field < delta.GetSchema().Fields().size(); ++field) {
      REQUIRE(!isDeleted || !delta.IsChanged(ticket, field));
      if (delta.HasOriginal(ticket, field)) {
        static_cast<void>(delta.Original(ticket, field));
      }
      if (!isDeleted) {
        static_cast<void>(delta.Current(ticket, field));
      }
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  kiv::PacketBytes packet(bytes, bytes + size);
  kiv::Seal(packet);
  try {
    const kiv::Delta delta = kiv::ReadDelta(kiv::SourceOf(packet), kLimits);
    AskAll(delta);
    const kiv::PacketBytes written = kiv::Written(delta);
    RequireSame(written, kiv::Written(kiv::ReadDelta(kiv::SourceOf(written))));
  } catch (const kiv::PacketError& error) {
    REQUIRE(error.Offset() <= packet.size());
  }
  std::optional<kiv::Dataset> read;
  try {
    read = kiv::ReadBack(packet, kLimits);
  } catch (const kiv::PacketError& error) {
    REQUIRE(error.Offset() <= packet.size());
    return 0;
  }
  const kiv::PacketBytes written = kiv::Written(*read);
  RequireSame(written, kiv::Written(kiv::ReadBack(written)));
  // Whatever the log says, all of it can be taken back, and what is then there is a dataset too.
  read->Changes().CancelChanges();
  static_cast<void>(kiv::ReadBack(kiv::Written(*read)));
  return 0;
}
