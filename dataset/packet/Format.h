#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

/// The binary packet, version 1. Little-endian, written and read in one pass, without seeking.
///
///     header   magic, version, kind, identity of the file, checksum: 32 bytes
///     TABL     number, parent, name, counts of rows and records, next temporary number, fields; identity of a delta
///     meta     the host's own notes
///     BLOB     values of memos and blobs in pieces, numbered in the order in which they end
///     TEXT     dictionary entries of one field; their codes count from 0 over all chunks of the field
///     ROWS     up to 8,192 rows: states and columns in sections, spread over as many chunks as they need
///     LOGR     records of the change log, oldest first
///     DONE     number of chunks, number of rows, and the checksum of all checksums
///
/// The rows of a delta are its tickets in their order: present values of what a receiver needs, the original ones of
/// rows that are deleted, nulls elsewhere. Its texts have no dictionaries. Its log has one record for each ticket.
///
/// A chunk is a type of four letters, the length of its payload, its number from 0, the payload, and the CRC-32C of all
/// of that. A type that begins with a small letter may be skipped by a reader that does not know it.
namespace kiv::packet {

static_assert(std::endian::native == std::endian::little);

inline constexpr std::array<std::uint8_t, 8> kMagic = {0x89, 'K', 'D', 'P', '\r', '\n', 0x1A, '\n'};
inline constexpr std::uint16_t kMajorVersion = 1;
inline constexpr std::uint16_t kMinorVersion = 0;
inline constexpr std::size_t kHeaderSize = 32;

/// What a packet is for.
enum class PacketKind : std::uint8_t { Offline = 1, Delta = 2, Report = 3 };

inline constexpr std::size_t kChunkHeaderSize = 12;
inline constexpr std::size_t kChecksumSize = 4;
inline constexpr std::uint32_t kMostPayload = 16U << 20U;
/// A writer ends a chunk that has grown beyond this.
inline constexpr std::size_t kFullChunk = std::size_t{128} * 1024;
/// Values of any length are cut into pieces of this many bytes.
inline constexpr std::size_t kPiece = std::size_t{64} * 1024;
/// What a writer's chunk never grows beyond, but for records with hundreds of long texts and for a thousand fields
/// with long defaults.
inline constexpr std::size_t kChunkBuffer = std::size_t{256} * 1024;

/// The one table of a packet has this number; none is its parent.
inline constexpr std::uint16_t kOnlyTable = 0;
inline constexpr std::uint16_t kNoTable = 0xFFFF;

enum class ChunkType : std::uint32_t {};

consteval ChunkType TypeOf(const char (&letters)[5]) {
  std::uint32_t type = 0;
  for (unsigned i = 0; i < 4; ++i) {
    type |= static_cast<std::uint32_t>(static_cast<unsigned char>(letters[i])) << (8 * i);
  }
  return ChunkType{type};
}

inline constexpr ChunkType kTable = TypeOf("TABL");
inline constexpr ChunkType kNotes = TypeOf("meta");
inline constexpr ChunkType kLargeValues = TypeOf("BLOB");
inline constexpr ChunkType kEntries = TypeOf("TEXT");
inline constexpr ChunkType kRows = TypeOf("ROWS");
inline constexpr ChunkType kRecords = TypeOf("LOGR");
inline constexpr ChunkType kEnd = TypeOf("DONE");

/// The flags of a field stand in the lower bits of their byte, its collation from this one on.
inline constexpr unsigned kCollationShift = 5;

/// What a piece of a BLOB belongs to.
enum class PieceOf : std::uint8_t {
  LargeValue,  ///< of a memo or blob
  LongText,    ///< of a text that the next chunk, and it alone, refers to in place of its bytes
};

/// Stands in the place of a text's length: it is the next long text.
inline constexpr std::uint16_t kIsLong = 0xFFFF;
/// Texts of rows and entries up to this many bytes stand where they are used.
inline constexpr std::size_t kMostInRows = 32'000;
/// The same in change records, which hold up to 1,024 of them.
inline constexpr std::size_t kMostInRecord = 4096;

/// How a section of a ROWS chunk holds its elements.
enum class Encoding : std::uint8_t {
  Plain,     ///< each as it is
  Constant,  ///< one for all
  Narrow,    ///< the least one, a width of 1, 2 or 4 bytes, and what each is above it
  Texts,     ///< place of the first row and number of rows, then the texts of those that are not null
};

/// Which values of a section are null.
enum class NullBits : std::uint8_t { None, Bitmap, All };

/// In the place of a field: the section holds the states of the rows.
inline constexpr std::uint16_t kStates = 0xFFFF;
/// Beside the number of a field in a change record: the old value was null.
inline constexpr std::uint16_t kOldIsNull = 0x8000;

}  // namespace kiv::packet
