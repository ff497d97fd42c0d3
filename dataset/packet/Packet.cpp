#include "kivtools/dataset/Packet.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "dataset/packet/DatasetReader.h"
#include "dataset/packet/DatasetWriter.h"
#include "dataset/packet/FileSource.h"
#include "dataset/packet/JournalReader.h"
#include "dataset/packet/PacketFile.h"
#include "dataset/store/Random.h"
#include "platform/Paths.h"
#include "platform/SafeFile.h"

namespace kiv {

namespace {

/// What was read: contents, and of a delta its identity.
struct ReadPacket {
  std::unique_ptr<store::Store> store;
  Guid deltaId;
  std::uint64_t identity;
};

ReadPacket Read(const PacketSource& source, const ReadLimits& limits, packet::PacketKind kind, PacketNotes* notes,
                Text operation) {
  packet::ChunkReader chunks(source, std::move(operation));
  packet::DatasetReader reader(chunks, limits);
  ReadPacket read{reader.Read(kind), reader.DeltaId(), chunks.Identity()};
  if (notes != nullptr) {
    *notes = reader.TakeNotes();
  }
  return read;
}

Dataset ToDataset(ReadPacket read) {
  return Dataset(std::move(read.store));
}

Delta ToDelta(const ReadPacket& read) {
  return {read.store->CopyContents(), read.deltaId};
}

/// Tells a packet from every other.
std::uint64_t NewIdentity() {
  const Guid guid = store::RandomGuid();
  std::uint64_t identity = 0;
  std::memcpy(&identity, guid.data4.data(), sizeof identity);
  return identity ^ guid.data1;
}

void Write(const DatasetView& dataset, const PacketSink& sink, std::span<const PacketNote> notes,
           std::uint64_t identity) {
  packet::ChunkWriter chunks(sink, packet::PacketKind::Offline, identity);
  packet::DatasetWriter(dataset.GetContents(), chunks).Write(notes);
}

void Write(const Delta& delta, const PacketSink& sink, std::span<const PacketNote> notes, std::uint64_t identity) {
  packet::ChunkWriter chunks(sink, packet::PacketKind::Delta, identity);
  packet::DatasetWriter(delta, chunks).Write(notes);
}

/// Saves what `write` gives to a sink; `whole` is called before the file gets its name.
template <class WriteTo, class Whole>
void SaveFile(const std::filesystem::path& path, const SaveOptions& options, TextView operation, WriteTo&& write,
              Whole&& whole) {
  platform::SafeFile file;
  file.Create(path).OrThrow(operation, path);
  write([&](std::span<const std::uint8_t> bytes) { file.Content().Write(bytes).OrThrow(operation, path); });
  whole();
  file.Commit(options.flush ? platform::Durability::Flushed : platform::Durability::Written,
              options.backup ? platform::Backup::Kept : platform::Backup::None)
      .OrThrow(operation, path);
}

template <class Content>
std::uint64_t Save(const Content& content, const std::filesystem::path& path, const SaveOptions& options,
                   TextView operation, packet::SaveLock& lock) {
  const std::uint64_t identity = NewIdentity();
  SaveFile(
      path, options, operation, [&](const PacketSink& sink) { Write(content, sink, options.notes, identity); },
      [&] { lock.LetReplace(); });
  return identity;
}

ReadPacket Load(const std::filesystem::path& path, const ReadLimits& limits, packet::PacketKind kind,
                PacketNotes* notes, TextView operation) {
  platform::File file;
  file.Open(path, platform::OpenMode::ReadFile).OrThrow(operation, path);
  packet::FileSource source(file, path, operation);
  return Read([&](std::span<std::uint8_t> into) { return source.Read(into); }, limits, kind, notes,
              Text(operation) + ": " + platform::ShownPath(path.native()));
}

}  // namespace

std::uint64_t packet::SaveDataset(const DatasetView& dataset, const std::filesystem::path& path,
                                  const SaveOptions& options, TextView operation, SaveLock& lock) {
  return Save(dataset, path, options, operation, lock);
}

void packet::SaveText(const std::filesystem::path& path, const SaveOptions& options, TextView operation,
                      const std::function<void(const PacketSink&)>& write) {
  SaveFile(path, options, operation, write, [] {});
}

PacketError::PacketError(std::int32_t chunk, std::uint64_t offset, const std::string& message)
    : Error(message), chunk_(chunk), offset_(offset) {}
PacketError::~PacketError() = default;

TextPacketError::TextPacketError(std::uint64_t line, std::uint64_t column, std::uint64_t offset,
                                 const std::string& message)
    : PacketError(-1, offset, message), line_(line), column_(column) {}
TextPacketError::~TextPacketError() = default;

void WriteBinary(const DatasetView& dataset, const PacketSink& sink, std::span<const PacketNote> notes) {
  Write(dataset, sink, notes, NewIdentity());
}

void WriteDelta(const Delta& delta, const PacketSink& sink, std::span<const PacketNote> notes) {
  Write(delta, sink, notes, NewIdentity());
}

Dataset ReadBinary(const PacketSource& source, const ReadLimits& limits, PacketNotes* notes) {
  return ToDataset(Read(source, limits, packet::PacketKind::Offline, notes, "ReadBinary"));
}

Delta ReadDelta(const PacketSource& source, const ReadLimits& limits, PacketNotes* notes) {
  return ToDelta(Read(source, limits, packet::PacketKind::Delta, notes, "ReadDelta"));
}

void SaveBinary(const DatasetView& dataset, const std::filesystem::path& path, const SaveOptions& options) {
  packet::SaveLock lock(path, "SaveBinary");
  Save(dataset, path, options, "SaveBinary", lock);
}

PacketContent ContentOf(const std::filesystem::path& path) {
  constexpr TextView kOperation = "ContentOf";
  platform::File file;
  file.Open(path, platform::OpenMode::ReadFile).OrThrow(kOperation, path);
  packet::FileSource bytes(file, path, kOperation);
  const PacketSource source = [&](std::span<std::uint8_t> into) { return bytes.Read(into); };
  const packet::ChunkReader chunks(source, Text(kOperation) + ": " + platform::ShownPath(path.native()));
  if (chunks.Kind() != packet::PacketKind::Offline && chunks.Kind() != packet::PacketKind::Delta) {
    chunks.Refuse("pachetul este de un fel necunoscut");
  }
  return static_cast<PacketContent>(chunks.Kind());
}

void SaveDelta(const Delta& delta, const std::filesystem::path& path, const SaveOptions& options) {
  packet::SaveLock lock(path, "SaveDelta");
  Save(delta, path, options, "SaveDelta", lock);
}

Dataset LoadBinary(const std::filesystem::path& path, const ReadLimits& limits, LoadReport* report) {
  LoadReport told;
  ReadPacket read = Load(path, limits, packet::PacketKind::Offline, &told.notes, "LoadBinary");
  const std::uint64_t identity = read.identity;
  Dataset dataset = ToDataset(std::move(read));
  packet::ReplayJournal(dataset, path, identity, limits, told);
  if (report != nullptr) {
    *report = std::move(told);
  }
  return dataset;
}

Delta LoadDelta(const std::filesystem::path& path, const ReadLimits& limits, PacketNotes* notes) {
  return ToDelta(Load(path, limits, packet::PacketKind::Delta, notes, "LoadDelta"));
}

}  // namespace kiv
