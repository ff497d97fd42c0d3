#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>

#include "kivtools/WinUtil/FileTrees.h"
#include "platform/Clock.h"
#include "platform/PageMemory.h"
#include "platform/Paths.h"
#include "platform/SafeFile.h"

namespace kiv {
namespace {

using platform::EntryInfo;
using platform::EntryKind;
using platform::File;
using platform::Folder;
using platform::Links;
using platform::OpenMode;
using platform::SystemStatus;

/// The size of the blocks in which CopyNoBuffering counts. Read are many at once, which nobody can tell.
constexpr std::size_t kBlock = 2'048;
constexpr std::size_t kBlocksAtOnce = 128;

bool Ask(TextView file, EntryInfo& info) {
  return !Query(Folder::Working(), platform::PathFromText(file), Links::Followed, info).Failed();
}

/// A pipe or a device is not even opened: somebody may wait at its other end.
SystemStatus OpenFile(File& file, const std::filesystem::path& path, EntryInfo& info, OpenMode mode) {
  const SystemStatus asked = Query(Folder::Working(), path, Links::Followed, info);
  if (asked.Failed()) {
    return asked;
  }
  if (info.kind == EntryKind::Other) {
    return WhyNotReplaced(info);
  }
  return file.OpenToRead(Folder::Working(), path, info, mode);
}

[[noreturn]] void ThrowShort(std::size_t wanted, std::size_t got) {
  throw Error("Am incercat sa citesc " + std::to_string(wanted) + " bytes; Am reusit sa citesc numai " +
              std::to_string(got) + " bytes");
}

/// Reads until the buffer is full or nothing more comes; a failure is an end like any other here.
std::size_t ReadFull(File& file, std::span<std::uint8_t> buffer) {
  std::size_t total = 0;
  for (std::size_t count = 1; total < buffer.size() && count > 0; total += count) {
    if (file.Read(buffer.subspan(total), count).Failed()) {
      break;
    }
  }
  return total;
}

class NoBufferingCopy {
 public:
  NoBufferingCopy(TextView source, TextView destination)
      : sourceName_(source), destination_(platform::PathFromText(destination)) {}

  void Run() {
    if (const SystemStatus reserved = buffer_.Reserve(kBlock * kBlocksAtOnce); reserved.Failed()) {
      throw Error("VirtualAlloc a esuat");
    }
    OpenSource();
    EntryInfo former;
    const SystemStatus found = Query(Folder::Working(), destination_, Links::Followed, former);
    if (!found.Failed() && former.identity == source_.identity) {
      throw Error("Nu pot deschide " + Text(sourceName_));
    }
    if (found.Failed()) {
      CopyToNewFile();
    } else {
      ReplaceFile();
    }
  }

 private:
  void OpenSource() {
    const auto path = platform::PathFromText(sourceName_);
    SystemStatus opened = OpenFile(file_, path, source_, OpenMode::ReadExclusive);
    if (opened.Failed()) {
      opened = OpenFile(file_, path, source_, OpenMode::ReadExclusive);
    }
    if (opened.Failed()) {
      throw Error("Nu pot deschide " + Text(sourceName_));
    }
  }

  void CopyToNewFile() {
    File copy;
    Require(copy.Open(Folder::Working(), destination_, OpenMode::Overwrite));
    CopyTo(copy);
    Require(copy.Close());
  }

  void ReplaceFile() {
    platform::SafeFile copy;
    const SystemStatus created = copy.Create(destination_);
    if (created.IsDenied() && MayBeReplaced()) {
      CopyToNewFile();  // over the former one, in a folder that takes no further file
      return;
    }
    Require(created);
    CopyTo(copy.Content());
    Require(copy.Commit(platform::Durability::Written));
  }

  [[nodiscard]] bool MayBeReplaced() const {
    EntryInfo info;
    return !Query(Folder::Working(), destination_, Links::Followed, info).Failed() && !WhyNotReplaced(info).Failed();
  }

  void CopyTo(File& copy) {
    for (std::uint64_t left = source_.size; left > 0;) {
      const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(left, buffer_.Bytes().size()));
      const auto bytes = buffer_.Bytes().first(wanted);
      const std::size_t got = ReadFull(file_, bytes);
      const std::size_t whole = got == wanted ? got : got / kBlock * kBlock;
      Require(copy.Write(bytes.first(whole)));
      if (got < wanted) {
        ThrowShort(std::min(kBlock, wanted - whole), got - whole);
      }
      left -= wanted;
    }
  }

  void Require(SystemStatus status) const { status.OrThrow("CopyNoBuffering", destination_); }

  TextView sourceName_;
  std::filesystem::path destination_;
  platform::PageMemory buffer_;
  File file_;
  EntryInfo source_;
};

/// One side of a comparison.
class ComparedFile {
 public:
  explicit ComparedFile(TextView name) : path_(platform::PathFromText(name)) {
    Require(OpenFile(file_, path_, info_, OpenMode::ReadFile));
  }

  [[nodiscard]] const EntryInfo& Info() const noexcept { return info_; }

  std::size_t Read(std::span<std::uint8_t> buffer) {
    std::size_t count = 0;
    Require(file_.Read(buffer, count));
    return count;
  }

 private:
  void Require(SystemStatus status) const { status.OrThrow("ComparaFisiere", path_); }

  std::filesystem::path path_;
  File file_;
  EntryInfo info_;
};

/// As many bytes from the one as the other has just given.
bool GivesTheSame(ComparedFile& file, std::span<const std::uint8_t> expected, std::span<std::uint8_t> buffer) {
  while (!expected.empty()) {
    const std::size_t count = file.Read(buffer.first(expected.size()));
    if (count == 0 || std::memcmp(buffer.data(), expected.data(), count) != 0) {
      return false;
    }
    expected = expected.subspan(count);
  }
  return true;
}

}  // namespace

void CopyNoBuffering(TextView source, TextView destination) {
  NoBufferingCopy(source, destination).Run();
}

void SalveazaFisier(TextView file, TextView content) {
  constexpr TextView kOperation = "SalveazaFisier";
  const std::filesystem::path path = platform::PathFromText(file);
  platform::SafeFile written;
  written.Create(path).OrThrow(kOperation, path);
  written.Content()
      .Write({reinterpret_cast<const std::uint8_t*>(content.data()), content.size()})
      .OrThrow(kOperation, path);
  written.Commit().OrThrow(kOperation, path);
}

bool ComparaFisiere(TextView file1, TextView file2) {
  ComparedFile first(file1);
  ComparedFile second(file2);
  if (first.Info().size != second.Info().size) {
    return false;
  }
  constexpr std::size_t kAtOnce = 131'072;  // both together stay in the processor's cache
  const auto memory = std::make_unique_for_overwrite<std::uint8_t[]>(2 * kAtOnce);
  const std::span<std::uint8_t> left(memory.get(), kAtOnce);
  const std::span<std::uint8_t> right(memory.get() + kAtOnce, kAtOnce);
  for (;;) {
    const std::size_t count = first.Read(left);
    if (count == 0) {
      return true;
    }
    if (!GivesTheSame(second, left.first(count), right)) {
      return false;
    }
  }
}

std::int32_t DimensiuneFisier(TextView file) {
  constexpr std::uint64_t kMost = std::numeric_limits<std::int32_t>::max();
  EntryInfo info;
  const bool isFile = Ask(file, info) && info.kind != EntryKind::Folder;
  return isFile ? static_cast<std::int32_t>(std::min(info.size, kMost)) : 0;
}

bool IsFileReadOnly(TextView file) {
  EntryInfo info;
  return !Ask(file, info) || IsProtected(info);
}

bool ForceDelete(TextView file) {
  return !ForceRemoveFile(Folder::Working(), platform::PathFromText(file)).Failed();
}

DateTime FileAgeByName(TextView file) {
  EntryInfo info;
  return Ask(file, info) && info.kind != EntryKind::Folder ? platform::LocalTimeOf(info.written) : DateTime(-1.0);
}

}  // namespace kiv
