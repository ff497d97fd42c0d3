#include "apps/kivtools/input/BlockReader.h"

#include <cstring>
#include <utility>

namespace kivtools {
namespace {

constexpr std::size_t kBlock = std::size_t{256} * 1024;

}  // namespace

BlockReader::BlockReader(ByteSource source)
    : source_(std::move(source)), capacity_(2 * kBlock), buffer_(std::make_unique_for_overwrite<char[]>(capacity_)) {}

bool BlockReader::ReadMore() {
  MakeRoom();
  const std::size_t count = source_(buffer_.get() + end_, capacity_ - end_);
  end_ += count;
  return count > 0;
}

void BlockReader::MakeRoom() {
  if (capacity_ - end_ >= kBlock) {
    return;
  }
  const std::size_t kept = end_ - begin_;
  if (capacity_ - kept < kBlock) {
    capacity_ *= 2;
    auto larger = std::make_unique_for_overwrite<char[]>(capacity_);
    std::memcpy(larger.get(), buffer_.get() + begin_, kept);
    buffer_ = std::move(larger);
  } else {
    std::memmove(buffer_.get(), buffer_.get() + begin_, kept);
  }
  begin_ = 0;
  end_ = kept;
}

}  // namespace kivtools
