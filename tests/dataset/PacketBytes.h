#pragma once

#include <algorithm>
#include <cstring>
#include <span>
#include <vector>

#include "core/Crc32c.h"
#include "dataset/packet/Format.h"
#include "kivtools/dataset/Packet.h"

namespace kiv {

using PacketBytes = std::vector<std::uint8_t>;

inline PacketSink AppendTo(PacketBytes& bytes) {
  return [&](std::span<const std::uint8_t> piece) { bytes.insert(bytes.end(), piece.begin(), piece.end()); };
}

inline PacketBytes Written(const DatasetView& dataset, std::span<const PacketNote> notes = {}) {
  PacketBytes bytes;
  WriteBinary(dataset, AppendTo(bytes), notes);
  return bytes;
}

inline PacketBytes Written(const Delta& delta) {
  PacketBytes bytes;
  WriteDelta(delta, AppendTo(bytes));
  return bytes;
}

/// A source that gives at most `step` bytes at a time.
inline PacketSource SourceOf(std::span<const std::uint8_t> packet, std::size_t step = 1000) {
  return [packet, step](std::span<std::uint8_t> into) mutable {
    const std::size_t count = std::min({into.size(), packet.size(), step});
    std::copy_n(packet.begin(), count, into.begin());
    packet = packet.subspan(count);
    return count;
  };
}

inline Dataset ReadBack(std::span<const std::uint8_t> packet, const ReadLimits& limits = {}, std::size_t step = 1000) {
  return ReadBinary(SourceOf(packet, step), limits);
}

/// A chunk of a packet: where its payload lies.
struct ChunkPlace {
  packet::ChunkType type;
  std::size_t payload;
  std::size_t size;
};

/// The chunks of a packet as far as they are whole.
inline std::vector<ChunkPlace> ChunksOf(std::span<const std::uint8_t> bytes) {
  std::vector<ChunkPlace> chunks;
  for (std::size_t at = packet::kHeaderSize; at + packet::kChunkHeaderSize <= bytes.size();) {
    ChunkPlace chunk{};
    std::uint32_t size = 0;
    std::memcpy(&chunk.type, bytes.data() + at, 4);
    std::memcpy(&size, bytes.data() + at + 4, 4);
    chunk.payload = at + packet::kChunkHeaderSize;
    chunk.size = size;
    if (chunk.size > bytes.size() - chunk.payload ||
        bytes.size() - chunk.payload - chunk.size < packet::kChecksumSize) {
      break;
    }
    chunks.push_back(chunk);
    at = chunk.payload + chunk.size + packet::kChecksumSize;
  }
  return chunks;
}

/// Makes numbers and checksums right whatever the chunks hold, so that a reader gets to see what is in them.
inline void Seal(PacketBytes& bytes) {
  const auto put = [&](std::size_t at, std::uint32_t number) { std::memcpy(bytes.data() + at, &number, 4); };
  if (bytes.size() >= packet::kHeaderSize) {
    put(28, Crc32c(std::as_bytes(std::span(bytes).first(28))));
  }
  std::uint32_t number = 0;
  std::uint32_t checksums = 0;
  for (const ChunkPlace& chunk : ChunksOf(bytes)) {
    if (chunk.type == packet::kEnd && chunk.size == 12) {
      put(chunk.payload, number);
      put(chunk.payload + 8, checksums);
    }
    put(chunk.payload - 4, number++);
    const auto sealed = std::as_bytes(
        std::span(bytes).subspan(chunk.payload - packet::kChunkHeaderSize, chunk.size + packet::kChunkHeaderSize));
    put(chunk.payload + chunk.size, Crc32c(sealed));
    checksums =
        Crc32c(std::as_bytes(std::span(bytes).subspan(chunk.payload + chunk.size, packet::kChecksumSize)), checksums);
  }
}

}  // namespace kiv
