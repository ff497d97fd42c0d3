#pragma once

#include <cstring>
#include <string_view>
#include <vector>

#include "dataset/packet/Format.h"
#include "kivtools/dataset/Packet.h"

namespace kiv::packet {

/// Puts a packet together chunk by chunk. One chunk at a time is in memory.
class ChunkWriter {
 public:
  /// Writes the packet's header. `identity` tells this packet from every other.
  ChunkWriter(const PacketSink& sink, PacketKind kind, std::uint64_t identity);

  void Begin(ChunkType type);
  [[nodiscard]] bool IsOpen() const noexcept { return isOpen_; }
  [[nodiscard]] bool IsFull() const noexcept { return chunk_.size() >= kFullChunk; }
  /// Checks the chunk's length, seals it and hands it on.
  void End();
  /// The last chunk.
  void Finish(std::uint32_t rows);

  /// Room for that many bytes of payload, which the caller fills before anything else is put.
  std::span<std::byte> Room(std::size_t size) {
    const std::size_t at = chunk_.size();
    chunk_.resize(at + size);
    return std::span(chunk_).subspan(at);
  }
  void PutBytes(const void* bytes, std::size_t size) {
    if (size > 0) {
      std::memcpy(Room(size).data(), bytes, size);
    }
  }
  void PutBytes(std::string_view bytes) { PutBytes(bytes.data(), bytes.size()); }
  template <class Number>
  void Put(Number number) {
    static_assert(std::is_integral_v<Number> || std::is_enum_v<Number>);
    PutBytes(&number, sizeof number);
  }
  /// Where the next byte will stand in the chunk, for a number that is known later.
  [[nodiscard]] std::size_t Place() const noexcept { return chunk_.size(); }
  template <class Number>
  void PutAt(std::size_t place, Number number) noexcept {
    std::memcpy(chunk_.data() + place, &number, sizeof number);
  }

 private:
  void HandOn(std::span<const std::byte> bytes);

  const PacketSink& sink_;
  std::vector<std::byte> chunk_;
  bool isOpen_ = false;
  std::uint32_t count_ = 0;
  std::uint32_t checksums_ = 0;
};

}  // namespace kiv::packet
