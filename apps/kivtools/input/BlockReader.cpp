#include "apps/kivtools/input/BlockReader.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace kivtools {
namespace {

constexpr std::size_t kBlock = std::size_t{512} * 1024;
constexpr std::size_t kSmallPiece = 4096;
constexpr std::size_t kLongestRecord = std::size_t{16} * 1024 * 1024;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

}  // namespace

void Block::Reserve(std::size_t capacity) {
  if (capacity_ < capacity) {
    capacity = std::max(capacity, 2 * capacity_);
    auto larger = std::make_unique_for_overwrite<char[]>(capacity);
    std::copy_n(bytes_.get(), size_, larger.get());
    bytes_ = std::move(larger);
    capacity_ = capacity;
  }
}

BlockReader::RecordTooLong::RecordTooLong(RecordKind kind)
    : InputError(kind == RecordKind::Line
                     ? Say({"a line of more than 16 MiB", "un rând de peste 16 MiB"})
                     : Say({"a record of more than 16 MiB; does a quote lack its end?",
                            "o înregistrare de peste 16 MiB; lipsește cumva o ghilimea de încheiere?"})) {}

BlockReader::BlockReader(ByteSource source, RecordKind kind, ByteOrderMark mark)
    : source_(std::move(source)), kind_(kind), startsWithMark_(mark == ByteOrderMark::Drop) {}

bool BlockReader::Next(Block& block) {
  std::size_t end = LastEnd();
  while (end == 0 && ReadMore()) {
    end = LastEnd();
  }
  end = end == 0 ? pending_.size_ : end;  // the last record may lack its end
  CheckLength(end);
  std::swap(block, pending_);
  const std::size_t rest = block.size_ - end;
  pending_.size_ = 0;
  pending_.Reserve(rest);
  std::copy_n(block.bytes_.get() + end, rest, pending_.bytes_.get());
  pending_.size_ = rest;
  block.size_ = end;
  scanned_ = rest;
  return end > 0;
}

std::string_view BlockReader::PeekFirst() {
  try {
    std::size_t end = FirstEnd();
    while (end == 0 && ReadMore()) {
      end = FirstEnd();
    }
    end = end == 0 ? pending_.size_ : end;
    CheckLength(end);
    return {pending_.bytes_.get(), end};
  } catch (const RecordTooLong& error) {
    throw LineError(firstLine_, AsItIs(error.what()));
  }
}

void BlockReader::DropFirst() {
  const std::string_view record = PeekFirst();
  firstLine_ += static_cast<std::uint64_t>(std::ranges::count(record, '\n'));
  DropFront(record.size());
}

/// False, and no change, at the end of the source.
bool BlockReader::ReadMore() {
  if (pending_.size_ > kLongestRecord) {
    throw RecordTooLong(kind_);
  }
  pending_.Reserve(std::max(kBlock, pending_.size_ + kSmallPiece));
  const std::size_t count = source_(pending_.bytes_.get() + pending_.size_, pending_.capacity_ - pending_.size_);
  pending_.size_ += count;
  slow_ = count < kSmallPiece;
  if (startsWithMark_) {
    DropByteOrderMark();
  }
  return count > 0;
}

/// Waits for no more than what can still be a mark.
void BlockReader::DropByteOrderMark() {
  const std::string_view start(pending_.bytes_.get(), std::min(pending_.size_, kByteOrderMark.size()));
  startsWithMark_ = kByteOrderMark.starts_with(start);
  if (start == kByteOrderMark) {
    DropFront(start.size());
    startsWithMark_ = false;
    hadMark_ = true;
  }
}

void BlockReader::DropFront(std::size_t count) noexcept {
  std::copy(pending_.bytes_.get() + count, pending_.bytes_.get() + pending_.size_, pending_.bytes_.get());
  pending_.size_ -= count;
  scanned_ = 0;
  inQuotes_ = false;
}

/// Where the first record ends, behind its line end; 0 where none does. A line end within quotes has an odd number of
/// them before it.
std::size_t BlockReader::FirstEnd() const noexcept {
  bool inQuotes = false;
  for (std::size_t at = 0; at < pending_.size_; ++at) {
    const char byte = pending_.bytes_[at];
    inQuotes ^= byte == '"' && kind_ == RecordKind::Csv;
    if (byte == '\n' && !inQuotes) {
      return at + 1;
    }
  }
  return 0;
}

/// Where the last whole record ends, 0 where none does. Looks only at what has come in since it was asked before.
std::size_t BlockReader::LastEnd() noexcept {
  const std::string_view fresh(pending_.bytes_.get() + scanned_, pending_.size_ - scanned_);
  const std::size_t before = std::exchange(scanned_, pending_.size_);
  if (kind_ == RecordKind::Line) {
    return fresh.rfind('\n') == std::string_view::npos ? 0 : before + fresh.rfind('\n') + 1;
  }
  inQuotes_ ^= std::ranges::count(fresh, '"') % 2 != 0;
  bool inQuotes = inQuotes_;
  for (std::size_t at = fresh.size(); at > 0; --at) {
    if (fresh[at - 1] == '\n' && !inQuotes) {
      return before + at;
    }
    inQuotes ^= fresh[at - 1] == '"';
  }
  return 0;
}

/// Only the first record can be long: the others came in with one call of the source.
void BlockReader::CheckLength(std::size_t end) const {
  if (end > kLongestRecord) {
    const std::size_t first = FirstEnd();
    if (first > kLongestRecord + 1 || first == 0) {
      throw RecordTooLong(kind_);
    }
  }
}

}  // namespace kivtools
