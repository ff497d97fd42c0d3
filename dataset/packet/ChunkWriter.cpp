#include "dataset/packet/ChunkWriter.h"

#include "core/Crc32c.h"

namespace kiv::packet {

ChunkWriter::ChunkWriter(const PacketSink& sink, PacketKind kind, std::uint64_t identity) : sink_(sink) {
  chunk_.reserve(kChunkBuffer);
  PutBytes(kMagic.data(), kMagic.size());
  Put(kMajorVersion);
  Put(kMinorVersion);
  Put(kind);
  Room(3);  // zero
  Put(identity);
  Room(4);  // zero
  Put(Crc32c(chunk_));
  HandOn(chunk_);
}

void ChunkWriter::HandOn(std::span<const std::byte> bytes) {
  sink_({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
}

void ChunkWriter::Begin(ChunkType type) {
  chunk_.clear();
  Put(type);
  Room(4);  // the length, once it is known
  Put(count_);
  isOpen_ = true;
}

void ChunkWriter::End() {
  const std::size_t length = chunk_.size() - kChunkHeaderSize;
  if (length > kMostPayload) {
    throw Error("WriteBinary: definitiile campurilor sau notele depasesc 16 MiB");
  }
  PutAt(4, static_cast<std::uint32_t>(length));
  const std::uint32_t checksum = Crc32c(chunk_);
  Put(checksum);
  checksums_ = Crc32c(std::span(chunk_).last(kChecksumSize), checksums_);
  HandOn(chunk_);
  ++count_;
  isOpen_ = false;
}

void ChunkWriter::Finish(std::uint32_t rows) {
  const std::uint32_t chunks = count_;
  const std::uint32_t checksums = checksums_;
  Begin(kEnd);
  Put(chunks);
  Put(rows);
  Put(checksums);
  End();
}

}  // namespace kiv::packet
