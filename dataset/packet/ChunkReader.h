#pragma once

#include <cstring>
#include <string_view>
#include <vector>

#include "dataset/packet/Format.h"
#include "kivtools/dataset/Packet.h"

namespace kiv::packet {

/// Takes a packet apart: gives its chunks one after the other, each checked before anything of it is believed, and the
/// numbers and bytes of a chunk. What is wrong is a PacketError that names chunk and byte.
class ChunkReader {
 public:
  /// Reads the packet's header. `operation` begins the messages.
  ChunkReader(const PacketSource& source, Text operation);

  /// Reads the next chunk that this reader knows, or sees to it that there is nothing after the last; false then.
  bool Next();
  [[nodiscard]] ChunkType Type() const noexcept { return type_; }
  [[nodiscard]] PacketKind Kind() const noexcept { return kind_; }
  /// What tells this packet from every other.
  [[nodiscard]] std::uint64_t Identity() const noexcept { return identity_; }
  /// How many rows the last chunk says that there are.
  [[nodiscard]] std::uint32_t Rows() const noexcept { return rows_; }

  [[nodiscard]] bool AtEnd() const noexcept { return at_ == payload_.size(); }
  /// The next bytes of the chunk, valid until the next chunk.
  std::span<const std::byte> Take(std::size_t size) {
    if (size > payload_.size() - at_) {
      Refuse("se termina inainte de vreme");
    }
    const auto taken = std::span<const std::byte>(payload_).subspan(at_, size);
    at_ += size;
    return taken;
  }
  /// What has not been taken of the chunk.
  [[nodiscard]] std::span<const std::byte> Rest() const noexcept {
    return std::span<const std::byte>(payload_).subspan(at_);
  }
  std::string_view TakeText(std::size_t size) {
    const auto bytes = Take(size);
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
  }
  /// The next number of the chunk.
  template <class Number>
  Number Take() {
    static_assert(std::is_integral_v<Number> || std::is_enum_v<Number>);
    Number number;
    std::memcpy(&number, Take(sizeof number).data(), sizeof number);
    return number;
  }
  /// The chunk is not as it has to be, at the place that has been reached.
  [[noreturn]] void Refuse(TextView why) const;

 private:
  void ReadHeader();
  void ReadPayload(std::uint32_t length);
  void CheckSums();
  void CheckEnd();
  std::size_t Fill(std::span<std::byte> bytes);
  [[noreturn]] void RefuseAt(std::uint64_t offset, TextView why) const;

  const PacketSource& source_;
  Text operation_;
  PacketKind kind_ = PacketKind::Offline;
  ChunkType type_{};
  std::uint64_t read_ = 0;        // bytes of the packet
  std::uint64_t chunkStart_ = 0;  // of them before this chunk
  std::uint32_t count_ = 0;
  std::uint32_t checksums_ = 0;
  std::uint32_t rows_ = 0;
  std::uint64_t identity_ = 0;
  bool isInChunk_ = false;
  std::vector<std::byte> payload_;
  std::size_t at_ = 0;
};

}  // namespace kiv::packet
