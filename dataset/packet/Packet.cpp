#include "kivtools/dataset/Packet.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "dataset/packet/DatasetReader.h"
#include "dataset/packet/DatasetWriter.h"
#include "platform/Paths.h"
#include "platform/SafeFile.h"

namespace kiv {

namespace {

constexpr std::size_t kBuffer = std::size_t{64} * 1024;

Dataset Read(const PacketSource& source, const ReadLimits& limits, Text operation) {
  packet::ChunkReader chunks(source, std::move(operation));
  return Dataset(packet::DatasetReader(chunks, limits).Read());
}

/// Gives a file's bytes; small reads share one call of the system.
class FileSource {
 public:
  FileSource(platform::File& file, const std::filesystem::path& path) : file_(file), path_(path), buffer_(kBuffer) {}

  std::size_t Read(std::span<std::uint8_t> into) {
    if (at_ == size_ && into.size() >= buffer_.size()) {
      return ReadFile(into);
    }
    if (at_ == size_) {
      size_ = ReadFile(buffer_);
      at_ = 0;
    }
    const std::size_t count = std::min(into.size(), size_ - at_);
    std::copy_n(buffer_.data() + at_, count, into.data());
    at_ += count;
    return count;
  }

 private:
  std::size_t ReadFile(std::span<std::uint8_t> into) {
    std::size_t count = 0;
    file_.Read(into, count).OrThrow("LoadBinary", path_);
    return count;
  }

  platform::File& file_;
  const std::filesystem::path& path_;
  std::vector<std::uint8_t> buffer_;
  std::size_t at_ = 0;
  std::size_t size_ = 0;
};

}  // namespace

PacketError::PacketError(std::uint64_t offset, const std::string& message) : Error(message), offset_(offset) {}
PacketError::~PacketError() = default;

void WriteBinary(const DatasetView& dataset, const PacketSink& sink) {
  packet::ChunkWriter chunks(sink, packet::PacketKind::Offline);
  packet::DatasetWriter(dataset.GetContents(), chunks).Write();
}

Dataset ReadBinary(const PacketSource& source, const ReadLimits& limits) {
  return Read(source, limits, "ReadBinary");
}

void SaveBinary(const DatasetView& dataset, const std::filesystem::path& path, const SaveOptions& options) {
  platform::SafeFile file;
  file.Create(path).OrThrow("SaveBinary", path);
  WriteBinary(dataset,
              [&](std::span<const std::uint8_t> bytes) { file.Content().Write(bytes).OrThrow("SaveBinary", path); });
  file.Commit(options.flush ? platform::Durability::Flushed : platform::Durability::Written,
              options.backup ? platform::Backup::Kept : platform::Backup::None)
      .OrThrow("SaveBinary", path);
}

Dataset LoadBinary(const std::filesystem::path& path, const ReadLimits& limits) {
  platform::File file;
  file.Open(path, platform::OpenMode::ReadFile).OrThrow("LoadBinary", path);
  FileSource source(file, path);
  return Read([&](std::span<std::uint8_t> into) { return source.Read(into); }, limits,
              "LoadBinary: " + platform::ShownPath(path.native()));
}

}  // namespace kiv
