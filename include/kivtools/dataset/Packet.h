/// @file
/// Datasets and deltas as files and streams: the binary packet ".kdp".
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <limits>
#include <span>
#include <vector>

#include "kivtools/Errors.h"
#include "kivtools/Export.h"
#include "kivtools/dataset/Dataset.h"

namespace kiv {

/// A packet that is damaged, cut short, or holds what no dataset could.
///
///     try { LoadBinary("linii.kdp"); }
///     catch (const PacketError& error) { error.Offset(); }   // 1041: the byte at which it shows
class KIV_API PacketError : public Error {
 public:
  PacketError(std::int32_t chunk, std::uint64_t offset, const std::string& message);
  ~PacketError() override;

  /// The number of the chunk with the fault, from 0; -1 for one outside of them all.
  [[nodiscard]] std::int32_t Chunk() const noexcept { return chunk_; }
  /// How many bytes lie before the fault.
  [[nodiscard]] std::uint64_t Offset() const noexcept { return offset_; }

 private:
  std::int32_t chunk_;
  std::uint64_t offset_;
};

/// A packet of text, CSV or XML, that is not what it has to be. Its Chunk() is -1.
///
///     try { LoadCsv("banca.csv"); }
///     catch (const TextPacketError& error) { error.Line(); error.Column(); }   // 17 and 3
class KIV_API TextPacketError : public PacketError {
 public:
  TextPacketError(std::uint64_t line, std::uint64_t column, std::uint64_t offset, const std::string& message);
  ~TextPacketError() override;

  /// The line with the fault, from 1.
  [[nodiscard]] std::uint64_t Line() const noexcept { return line_; }
  /// Of CSV the value's place in its row, from 1, 0 where it is the row that is wrong; of XML the byte within the line,
  /// from 1.
  [[nodiscard]] std::uint64_t Column() const noexcept { return column_; }

 private:
  std::uint64_t line_;
  std::uint64_t column_;
};

/// The most that a packet may hold; one with more is refused before it has been given the memory.
struct ReadLimits {
  /// Rows, deleted ones included.
  std::uint32_t maxRows = 0x7FFFFFFE;
  /// Fields of a row.
  std::uint32_t maxFields = 1024;
  /// Bytes of the values of all rows, texts and large values.
  std::uint64_t maxBytes = sizeof(void*) == 4 ? std::uint64_t{1} << 30U : std::uint64_t{1} << 34U;
};

/// A text of the host's own that travels with a packet: who wrote it, when, from which question to the server.
struct PacketNote {
  Text name;
  Text value;
};
/// The notes of a packet in the order in which they were given; names may repeat.
using PacketNotes = std::vector<PacketNote>;

/// How a file is saved.
struct SaveOptions {
  /// Keeps the file that had the name, under the same name with ".bak" at its end.
  bool backup = false;
  /// Waits until the file is on the disk, so that it survives the loss of power. Without it a save is many times
  /// faster, and still never leaves a part of a file.
  bool flush = true;
  /// What goes into the packet beside the dataset. Example: `{.notes = {{"utilizator", "ana"}}}`.
  PacketNotes notes = {};
};

/// What a load has met beside the dataset.
struct LoadReport {
  /// Those of the packet.
  PacketNotes notes;
  /// How many edits of the journal were done again.
  std::uint64_t replayed = 0;
  /// The bytes of the journal behind its last whole edit: what was being written when the process or the machine
  /// stopped, or what was damaged later.
  std::uint64_t lostBytes = 0;
};

/// What a packet holds.
enum class PacketContent : std::uint8_t {
  Dataset = 1,  ///< rows with their history
  Delta = 2,    ///< the net of changes
};

/// Takes the next bytes of a packet; throws to end the writing.
using PacketSink = std::function<void(std::span<const std::uint8_t>)>;
/// Gives the next bytes of a packet: puts up to as many as fit and returns how many those are, 0 at the end only;
/// throws to end the reading.
using PacketSource = std::function<std::size_t(std::span<std::uint8_t>)>;

/// Writes the dataset as a packet, in one pass and with about half a megabyte of memory: rows, states, originals and
/// the history of changes. A snapshot may be written by
/// another thread than the one that edits its dataset.
///
///     std::vector<std::uint8_t> packet;
///     WriteBinary(linii, [&](auto bytes) { packet.insert(packet.end(), bytes.begin(), bytes.end()); });
KIV_API void WriteBinary(const DatasetView& dataset, const PacketSink& sink, std::span<const PacketNote> notes = {});

/// Reads a packet: rows, states, originals and history are those of the dataset that was written; numbers of rows are
/// given anew, marks are gone. Throws PacketError, naming chunk and byte, for a packet that is damaged or not whole,
/// for bytes after its end, and for one that goes beyond the limits. The notes are put into `notes` unless it is null.
///
///     const Dataset linii = ReadBinary(source);
[[nodiscard]] KIV_API Dataset ReadBinary(const PacketSource& source, const ReadLimits& limits = {},
                                         PacketNotes* notes = nullptr);

/// Writes a delta as a packet that holds what has changed and no more: for each ticket the key, the fields that take
/// part in the detection of conflicts, the changed ones with their originals.
///
///     WriteDelta(linii.Changes().MakeDelta(), sink);
KIV_API void WriteDelta(const Delta& delta, const PacketSink& sink, std::span<const PacketNote> notes = {});

/// Reads a delta: identity, tickets, originals and new values are those of the delta that was written. The row of a
/// ticket is the ticket's number; a value that a receiver does not need is null. Throws as ReadBinary does.
///
///     const Delta delta = ReadDelta(source);
[[nodiscard]] KIV_API Delta ReadDelta(const PacketSource& source, const ReadLimits& limits = {},
                                      PacketNotes* notes = nullptr);

/// Saves the dataset as a file. Wherever it fails, and wherever the process or the machine stops, what has the name is
/// the old file or the new one, whole. Throws OsError, and Error where somebody else is saving the file or keeps a
/// journal of it.
///
///     SaveBinary(linii, "linii.kdp", {.backup = true});
KIV_API void SaveBinary(const DatasetView& dataset, const std::filesystem::path& path, const SaveOptions& options = {});

/// Loads a file, and does again what a Journal of it holds. Throws OsError, and PacketError as ReadBinary does.
///
///     LoadReport report;
///     Dataset linii = LoadBinary("linii.kdp", {}, &report);
///     report.lostBytes   // 0: nothing was cut short
[[nodiscard]] KIV_API Dataset LoadBinary(const std::filesystem::path& path, const ReadLimits& limits = {},
                                         LoadReport* report = nullptr);

/// What a file holds, by its first bytes. Throws OsError, and PacketError for a file that is no packet.
///
///     ContentOf("linii.kdp")   // PacketContent::Dataset
[[nodiscard]] KIV_API PacketContent ContentOf(const std::filesystem::path& path);

/// Saves a delta as a file, as SaveBinary does.
///
///     SaveDelta(delta, "linii-de-trimis.kdp");
KIV_API void SaveDelta(const Delta& delta, const std::filesystem::path& path, const SaveOptions& options = {});

/// Loads the file of a delta, as LoadBinary does.
///
///     const Delta delta = LoadDelta("linii-de-trimis.kdp");
[[nodiscard]] KIV_API Delta LoadDelta(const std::filesystem::path& path, const ReadLimits& limits = {},
                                      PacketNotes* notes = nullptr);

}  // namespace kiv
