#include "apps/kivtools/Output.h"

#include <algorithm>

#include "apps/kivtools/Layout.h"
#include "apps/kivtools/system/Console.h"
#include "apps/kivtools/system/SystemError.h"

namespace kivtools {
namespace {

constexpr std::size_t kBlock = std::size_t{64} * 1024;
constexpr std::string_view kEraseLine = "\r\x1B[K";

}  // namespace

void Output::Write(std::string_view text) {
  if (text.size() < kBlock) {
    buffer_ += text;
    if (buffer_.size() >= kBlock) {
      Flush();
    }
  } else {
    Flush();
    Pass(text);
  }
}

void Output::Flush() {
  Pass(buffer_);
  buffer_.clear();
}

void Output::Pass(std::string_view bytes) {
  try {
    WriteAll(StandardStream::Output, bytes);
  } catch (const SystemError& error) {
    throw OutputError(error.what());
  }
}

void WriteError(std::string_view line) noexcept {
  try {
    WriteAll(StandardStream::Error, std::string(line) + "\n");
  } catch (...) {  // NOLINT(bugprone-empty-catch): there is no other place to tell it
  }
}

Progress::Progress(std::optional<std::uint64_t> total)
    : total_(total),
      watched_(TerminalWidth(StandardStream::Error).has_value()),
      next_(Clock::now() + std::chrono::seconds(1)) {}

Progress::~Progress() {
  if (drawn_) {
    try {
      WriteAll(StandardStream::Error, kEraseLine);
    } catch (...) {  // NOLINT(bugprone-empty-catch): only the bar stays on the screen
    }
  }
}

void Progress::Advance(std::uint64_t bytes) {
  done_ += bytes;
  if (!watched_ || Clock::now() < next_) {
    return;
  }
  next_ = Clock::now() + std::chrono::milliseconds(200);
  drawn_ = true;
  Draw();
}

void Progress::Draw() const {
  constexpr std::size_t kCells = 30;
  std::string line(kEraseLine);
  if (total_ && *total_ > 0) {
    const std::uint64_t done = std::min(done_, *total_);
    const auto full = static_cast<std::size_t>(done * kCells / *total_);
    line += Repeat("█", full) + Repeat("░", kCells - full) + " " + std::to_string(done * 100 / *total_) + " %";
  } else {
    line += std::to_string(done_ / 1'048'576) + " MiB";
  }
  WriteAll(StandardStream::Error, line);
}

}  // namespace kivtools
