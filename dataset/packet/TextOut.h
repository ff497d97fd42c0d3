#pragma once

#include <cstring>
#include <string_view>
#include <vector>

#include "kivtools/dataset/Packet.h"

namespace kiv::packet {

/// Gathers text for a sink, in pieces of 64 KiB.
class TextOut {
 public:
  explicit TextOut(const PacketSink& sink) : sink_(sink), buffer_(kBuffer) {}

  void Put(std::string_view text) {
    if (text.size() > kBuffer - used_) {
      Flush();
      if (text.size() > kBuffer) {
        Give(text);
        return;
      }
    }
    std::memcpy(buffer_.data() + used_, text.data(), text.size());
    used_ += text.size();
  }
  void Put(char character) {
    *Room(1) = character;
    ++used_;
  }
  /// Where up to `most` bytes may be written, of which Took() says how many were.
  char* Room(std::size_t most) {
    if (most > kBuffer - used_) {
      Flush();
    }
    return buffer_.data() + used_;
  }
  void Took(const char* end) noexcept { used_ = static_cast<std::size_t>(end - buffer_.data()); }
  void Flush() {
    Give({buffer_.data(), used_});
    used_ = 0;
  }

 private:
  static constexpr std::size_t kBuffer = std::size_t{64} * 1024;
  void Give(std::string_view text) {
    if (!text.empty()) {
      sink_({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    }
  }

  const PacketSink& sink_;
  std::vector<char> buffer_;
  std::size_t used_ = 0;
};

}  // namespace kiv::packet
