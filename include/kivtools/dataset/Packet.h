/// @file
/// Datasets as files and streams: the binary packet ".kdp", with rows, states, originals and the history of changes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <limits>
#include <span>

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
  PacketError(std::uint64_t offset, const std::string& message);
  ~PacketError() override;

  /// How many bytes lie before the fault.
  [[nodiscard]] std::uint64_t Offset() const noexcept { return offset_; }

 private:
  std::uint64_t offset_;
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

/// How a file is saved.
struct SaveOptions {
  /// Keeps the file that had the name, under the same name with ".bak" at its end.
  bool backup = false;
  /// Waits until the file is on the disk, so that it survives the loss of power. Without it a save is many times
  /// faster, and still never leaves a part of a file.
  bool flush = true;
};

/// Takes the next bytes of a packet; throws to end the writing.
using PacketSink = std::function<void(std::span<const std::uint8_t>)>;
/// Gives the next bytes of a packet: puts up to as many as fit and returns how many those are, 0 at the end only;
/// throws to end the reading.
using PacketSource = std::function<std::size_t(std::span<std::uint8_t>)>;

/// Writes the dataset as a packet, in one pass and with about half a megabyte of memory. A snapshot may be written by
/// another thread than the one that edits its dataset.
///
///     std::vector<std::uint8_t> packet;
///     WriteBinary(linii, [&](auto bytes) { packet.insert(packet.end(), bytes.begin(), bytes.end()); });
KIV_API void WriteBinary(const DatasetView& dataset, const PacketSink& sink);

/// Reads a packet: rows, states, originals and history are those of the dataset that was written; numbers of rows are
/// given anew, marks are gone. Throws PacketError, naming chunk and byte, for a packet that is damaged or not whole,
/// for bytes after its end, and for one that goes beyond the limits.
///
///     const Dataset linii = ReadBinary(source);
[[nodiscard]] KIV_API Dataset ReadBinary(const PacketSource& source, const ReadLimits& limits = {});

/// Saves the dataset as a file. Wherever it fails, and wherever the process or the machine stops, what has the name is
/// the old file or the new one, whole. Throws OsError.
///
///     SaveBinary(linii, "linii.kdp", {.backup = true});
KIV_API void SaveBinary(const DatasetView& dataset, const std::filesystem::path& path, const SaveOptions& options = {});

/// Loads a file. Throws OsError, and PacketError as ReadBinary does.
///
///     Dataset linii = LoadBinary("linii.kdp");
[[nodiscard]] KIV_API Dataset LoadBinary(const std::filesystem::path& path, const ReadLimits& limits = {});

}  // namespace kiv
