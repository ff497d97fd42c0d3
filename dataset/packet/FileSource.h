#pragma once

#include <algorithm>
#include <filesystem>
#include <span>
#include <vector>

#include "kivtools/Types.h"
#include "platform/Files.h"

namespace kiv::packet {

/// Gives a file's bytes; small reads share one call of the system.
class FileSource {
 public:
  FileSource(platform::File& file, const std::filesystem::path& path, TextView operation)
      : file_(file), path_(path), operation_(operation), buffer_(std::size_t{64} * 1024) {}

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
    file_.Read(into, count).OrThrow(operation_, path_);
    return count;
  }

  platform::File& file_;
  const std::filesystem::path& path_;
  TextView operation_;
  std::vector<std::uint8_t> buffer_;
  std::size_t at_ = 0;
  std::size_t size_ = 0;
};

}  // namespace kiv::packet
