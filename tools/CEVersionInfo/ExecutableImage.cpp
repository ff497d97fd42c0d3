#include "tools/CEVersionInfo/ExecutableImage.h"

#include <algorithm>
#include <array>
#include <limits>

namespace kiv::version {
namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::uint32_t kVersionType = 16;
constexpr std::uint32_t kVersionName = 1;
constexpr std::uint16_t kNeutral = 0;
constexpr std::uint16_t kEnglishUnitedStates = 0x0409;
constexpr std::uint16_t kLanguageBits = 0x03FF;

/// Reads small records near one another through one buffer, never past the end and never more than allowed.
class Reader {
 public:
  explicit Reader(ByteSource& source) : source_(source), size_(source.Size()) {}

  /// The record at `offset`, valid until the next call; empty where the file does not hold all of it or the allowance
  /// is used up. A record is at most 256 bytes.
  Bytes Record(std::uint64_t offset, std::size_t length) {
    if (offset < start_ || offset + length > start_ + filled_) {
      Fill(offset, length);
    }
    return offset + length <= start_ + filled_
               ? Bytes(buffer_).subspan(static_cast<std::size_t>(offset - start_), length)
               : Bytes();
  }

  /// Reads a run of bytes for keeps, as far as the allowance goes; nothing where the file does not hold all of it.
  std::optional<std::vector<std::uint8_t>> Run(std::uint64_t offset, std::size_t length) {
    if (!Holds(offset, length)) {
      return std::nullopt;
    }
    std::vector<std::uint8_t> run(std::min(length, allowance_));
    allowance_ -= run.size();
    return source_.ReadAt(offset, run) == run.size() ? std::optional(std::move(run)) : std::nullopt;
  }

  /// Whether the file has these bytes.
  [[nodiscard]] bool Holds(std::uint64_t offset, std::uint64_t length) const {
    return offset <= size_ && length <= size_ - offset;
  }

  /// Lifts the limit for files that have a version resource.
  void AllowWholeResource() { allowance_ += kMostBytesRead - kMostBytesReadInVain; }

 private:
  void Fill(std::uint64_t offset, std::size_t length) {
    start_ = 0;
    filled_ = 0;
    if (!Holds(offset, length) || length > allowance_) {
      return;
    }
    // The first read takes a usual file's headers at once.
    const std::size_t wanted = offset == 0 ? buffer_.size() : buffer_.size() / 2;
    const auto most = static_cast<std::size_t>(std::min<std::uint64_t>({wanted, allowance_, size_ - offset}));
    start_ = offset;
    filled_ = source_.ReadAt(offset, std::span(buffer_).first(most));
    allowance_ -= most;
  }

  ByteSource& source_;
  std::uint64_t size_;
  std::size_t allowance_ = kMostBytesReadInVain;
  std::uint64_t start_ = 0;
  std::size_t filled_ = 0;
  std::array<std::uint8_t, 1024> buffer_{};
};

/// Where the parts of an image that matter here lie in the file.
struct Image {
  std::uint64_t sectionTable = 0;
  std::uint32_t sections = 0;
  std::uint32_t resourceAddress = 0;  // relative to the image's base, as the loader places it
};

std::optional<Image> ReadHeaders(Reader& reader, std::uint32_t header) {
  constexpr std::size_t kFileHeader = 24;  // with the signature before it
  const Bytes file = reader.Record(header, kFileHeader);
  if (file.empty()) {
    return std::nullopt;
  }
  Image image;
  image.sections = Number16(file.subspan(6));
  const std::uint16_t optionalSize = Number16(file.subspan(20));
  const std::uint64_t optional = std::uint64_t{header} + kFileHeader;
  image.sectionTable = optional + optionalSize;

  const Bytes magic = reader.Record(optional, 2);
  if (magic.empty() || (Number16(magic) != 0x10B && Number16(magic) != 0x20B)) {
    return std::nullopt;
  }
  // The count of directories, then eight bytes for each; the third is the resources'.
  const std::size_t directories = Number16(magic) == 0x10B ? 92 : 108;
  const Bytes counted = reader.Record(optional + directories, 4 + 3 * 8);
  if (counted.empty() || directories + counted.size() > optionalSize || Number32(counted) < 3) {
    return std::nullopt;
  }
  image.resourceAddress = Number32(counted.subspan(4 + 2 * 8));
  return image.resourceAddress != 0 ? std::optional(image) : std::nullopt;
}

/// A place in the file and how many bytes of its section follow it there.
struct Extent {
  std::uint64_t offset = 0;
  std::uint32_t length = 0;
};

/// The place of an address of the loaded image.
std::optional<Extent> Locate(Reader& reader, const Image& image, std::uint32_t address) {
  constexpr std::size_t kSectionHeader = 40;
  constexpr std::uint32_t kMostSections = 96;  // the system's loader takes no more
  for (std::uint32_t i = 0; i < std::min(image.sections, kMostSections); ++i) {
    const Bytes header = reader.Record(image.sectionTable + i * kSectionHeader, kSectionHeader);
    if (header.empty()) {
      return std::nullopt;
    }
    const std::uint32_t first = Number32(header.subspan(12));
    const std::uint32_t length = Number32(header.subspan(16));
    if (address >= first && address - first < length) {
      const std::uint32_t within = address - first;
      return Extent{std::uint64_t{Number32(header.subspan(20))} + within, length - within};
    }
  }
  return std::nullopt;
}

/// An entry of a resource directory.
struct Entry {
  bool named = false;
  std::uint32_t number = 0;
  std::uint32_t target = 0;  // relative to the first directory
  bool directory = false;
};

constexpr int kRefused = std::numeric_limits<int>::max();

/// The entry of the directory at `at` whose rank is lowest, the first of several.
template <class Rank>
std::optional<Entry> BestEntry(Reader& reader, const Extent& resources, std::uint32_t at, Rank rank) {
  constexpr std::uint32_t kDirectoryHeader = 16;
  const auto record = [&](std::uint64_t offset, std::size_t length) {
    return offset + length <= resources.length ? reader.Record(resources.offset + offset, length) : Bytes();
  };
  const Bytes header = record(at, kDirectoryHeader);
  if (header.empty()) {
    return std::nullopt;
  }
  const std::uint32_t count = std::uint32_t{Number16(header.subspan(12))} + Number16(header.subspan(14));
  std::optional<Entry> best;
  int bestRank = kRefused;
  for (std::uint32_t i = 0; i < count && bestRank > 0; ++i) {
    const Bytes bytes = record(std::uint64_t{at} + kDirectoryHeader + std::uint64_t{i} * 8, 8);
    if (bytes.empty()) {
      return std::nullopt;
    }
    constexpr std::uint32_t kFlag = 0x80000000;
    const std::uint32_t name = Number32(bytes);
    const std::uint32_t target = Number32(bytes.subspan(4));
    const Entry entry{(name & kFlag) != 0, name & ~kFlag, target & ~kFlag, (target & kFlag) != 0};
    const int entryRank = rank(entry);
    if (entryRank < bestRank) {
      best = entry;
      bestRank = entryRank;
    }
  }
  return best;
}

int RankOfLanguage(const Entry& entry, std::uint16_t user) {
  const auto sameLanguage = [&entry](std::uint16_t other) {
    return other != 0 && (entry.number & kLanguageBits) == (other & kLanguageBits);
  };
  if (entry.named) {
    return 5;
  }
  return entry.number == kNeutral               ? 0
         : entry.number == user                 ? 1
         : sameLanguage(user)                   ? 2
         : entry.number == kEnglishUnitedStates ? 3
         : sameLanguage(kEnglishUnitedStates)   ? 4
                                                : 5;
}

/// The data entry (address and length) of the version resource: from the directory of types over the one of names to
/// the one of languages. Each must be another one, so that a directory that contains itself leads nowhere.
std::optional<std::uint32_t> FindDataEntry(Reader& reader, const Extent& resources, std::uint16_t userLanguage) {
  const auto type = BestEntry(reader, resources, 0, [](const Entry& entry) {
    return !entry.named && entry.number == kVersionType ? 0 : kRefused;
  });
  if (!type || !type->directory || type->target == 0) {
    return std::nullopt;
  }
  reader.AllowWholeResource();
  const auto name = BestEntry(reader, resources, type->target, [](const Entry& entry) {
    return !entry.named && entry.number == kVersionName ? 0 : kRefused;
  });
  if (!name || !name->directory || name->target == 0 || name->target == type->target) {
    return std::nullopt;
  }
  const auto language = BestEntry(reader, resources, name->target,
                                  [userLanguage](const Entry& entry) { return RankOfLanguage(entry, userLanguage); });
  return language && !language->directory ? std::optional(language->target) : std::nullopt;
}

std::optional<std::vector<std::uint8_t>> FindIn32Or64Bit(Reader& reader, std::uint32_t header,
                                                         std::uint16_t userLanguage) {
  const auto image = ReadHeaders(reader, header);
  const auto resources = image ? Locate(reader, *image, image->resourceAddress) : std::nullopt;
  const auto entry = resources ? FindDataEntry(reader, *resources, userLanguage) : std::nullopt;
  if (!entry || std::uint64_t{*entry} + 8 > resources->length) {
    return std::nullopt;
  }
  const Bytes data = reader.Record(resources->offset + *entry, 8);
  if (data.empty()) {
    return std::nullopt;
  }
  const std::uint32_t address = Number32(data);
  const std::uint32_t length = Number32(data.subspan(4));
  const auto extent = Locate(reader, *image, address);
  return extent && length <= extent->length ? reader.Run(extent->offset, length) : std::nullopt;
}

/// The numbers of types and resources in a table of resources have this bit set; names are places without it.
constexpr std::uint16_t kNumbered = 0x8000;
constexpr std::size_t kResource = 12;  // an entry's size

/// The contents of the version resource among `count` resources at `at`, whose places are counted in 2^unit bytes.
std::optional<std::vector<std::uint8_t>> FindNumbered(Reader& reader, std::uint64_t at, std::uint16_t count,
                                                      std::uint16_t unit) {
  for (std::uint16_t i = 0; i < count; ++i) {
    const Bytes resource = reader.Record(at + i * kResource, kResource);
    if (resource.empty()) {
      break;
    }
    if (Number16(resource.subspan(6)) == (kNumbered | kVersionName)) {
      return reader.Run(std::uint64_t{Number16(resource)} << unit, std::size_t{Number16(resource.subspan(2))} << unit);
    }
  }
  return std::nullopt;
}

/// 16-bit programs have one table of resources: for each type its number and its resources, each with its place and
/// length in units that the table's first number gives.
std::optional<std::vector<std::uint8_t>> FindIn16Bit(Reader& reader, std::uint32_t header) {
  constexpr std::size_t kTypeHeader = 8;
  const Bytes table = reader.Record(std::uint64_t{header} + 36, 2);
  std::uint64_t at = table.empty() ? 0 : std::uint64_t{header} + Number16(table);
  const Bytes shift = at != 0 ? reader.Record(at, 2) : Bytes();
  const std::uint16_t unit = shift.empty() ? std::uint16_t{0xFFFF} : Number16(shift);
  if (unit > 15) {
    return std::nullopt;
  }
  at += 2;
  for (Bytes type = reader.Record(at, kTypeHeader); !type.empty(); type = reader.Record(at, kTypeHeader)) {
    const std::uint16_t number = Number16(type);
    const std::uint16_t count = Number16(type.subspan(2));
    at += kTypeHeader;
    if (number == (kNumbered | kVersionType)) {
      reader.AllowWholeResource();
      return FindNumbered(reader, at, count, unit);
    }
    if (number == 0) {
      break;
    }
    at += count * kResource;
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::vector<std::uint8_t>> FindVersionResource(ByteSource& source, std::uint16_t userLanguage) {
  constexpr std::size_t kDosHeader = 64;
  Reader reader(source);
  const Bytes dos = reader.Record(0, kDosHeader);
  if (dos.empty() || dos[0] != 'M' || dos[1] != 'Z') {
    return std::nullopt;
  }
  const std::uint32_t header = Number32(dos.subspan(60));
  const Bytes signature = reader.Record(header, 4);
  if (!signature.empty() && Number32(signature) == 0x00004550) {  // "PE", 0, 0
    return FindIn32Or64Bit(reader, header, userLanguage);
  }
  const bool segmented = !signature.empty() && Number16(signature) == 0x454E;  // "NE"
  return segmented ? FindIn16Bit(reader, header) : std::nullopt;
}

}  // namespace kiv::version
