#include "apps/kivtools/Output.h"

#include <algorithm>
#include <utility>

#include "apps/kivtools/Layout.h"
#include "apps/kivtools/system/Console.h"
#include "apps/kivtools/system/SystemError.h"

namespace kivtools {
namespace {

constexpr std::size_t kBlock = std::size_t{64} * 1024;
constexpr std::size_t kMostFigures = 14;  // "12345678 MiB  "

/// A terminal shows "^C" where the cursor is when the user types that. So many columns after the bar stay free.
constexpr std::size_t kTypedInterrupt = 2;

/// What of the terminal's present line is taken.
struct PresentLine {
  std::size_t progressColumns = 0;
  bool hasResults = false;  ///< the results end without a line end; true only where they go to a terminal
};
PresentLine present_line;

void EraseProgress() {
  if (const std::size_t columns = std::exchange(present_line.progressColumns, 0); columns > 0) {
    WriteAll(StandardStream::Error, "\r" + std::string(columns, ' ') + "\r");
    WipeWhenInterrupted(0);
  }
}

void DrawProgress(const std::string& line) {
  EraseProgress();
  present_line.progressColumns = DisplayWidth(line);
  WipeWhenInterrupted(present_line.progressColumns + kTypedInterrupt);
  WriteAll(StandardStream::Error, line);
}

void PassResults(std::string_view bytes) {
  static const bool seen = TerminalWidth(StandardStream::Output).has_value();
  if (bytes.empty()) {
    return;
  }
  try {
    EraseProgress();
    WriteAll(StandardStream::Output, bytes);
  } catch (const ReaderGone& error) {
    throw ReaderEnded(error.what());
  } catch (const SystemError& error) {
    throw OutputError(error.what());
  }
  present_line.hasResults = seen && !bytes.ends_with('\n');
}

}  // namespace

void Output::Write(std::string_view text) {
  if (text.size() < kBlock) {
    buffer_ += text;
    if (buffer_.size() >= kBlock) {
      Flush();
    }
  } else {
    Flush();
    PassResults(text);
  }
}

void Output::Flush() {
  // What could not be written is not tried again.
  PassResults(std::exchange(buffer_, {}));
}

void WriteError(std::string_view line) noexcept {
  try {
    EraseProgress();
    WriteAll(StandardStream::Error, std::string(line) + "\n");
  } catch (...) {  // NOLINT(bugprone-empty-catch): there is no other place to tell it
  }
}

Progress::Progress(std::optional<std::uint64_t> total, bool wanted)
    : total_(total),
      watched_(wanted && TerminalWidth(StandardStream::Error).has_value()),
      next_(Clock::now() + std::chrono::seconds(1)) {}

Progress::~Progress() {
  try {
    EraseProgress();
  } catch (...) {  // NOLINT(bugprone-empty-catch): only the bar stays on the screen
  }
}

void Progress::Advance(std::uint64_t units) noexcept {
  done_ += units;
  if (!watched_ || Clock::now() < next_ || present_line.hasResults) {
    return;
  }
  next_ = Clock::now() + std::chrono::milliseconds(200);
  try {
    DrawProgress(Line(TerminalWidth(StandardStream::Error).value_or(0)));
  } catch (...) {
    watched_ = false;
  }
}

void Progress::Note(std::string note) noexcept {
  note_ = std::move(note);
  Advance(0);
}

std::size_t Progress::NoteColumns() noexcept {
  const std::size_t columns = TerminalWidth(StandardStream::Error).value_or(0);
  return columns > kMostFigures ? columns - kMostFigures - 1 : 0;  // the last column stays free
}

std::string Progress::Line(std::size_t columns) const {
  const std::string figures = Figures(columns);
  const bool fits = !note_.empty() && DisplayWidth(figures) + 2 + DisplayWidth(note_) < columns;
  return figures + (fits ? "  " + note_ : "");
}

std::string Progress::Figures(std::size_t columns) const {
  if (!total_ || *total_ == 0) {
    return std::to_string(done_ / 1'048'576) + " MiB";
  }
  constexpr std::size_t kMostCells = 30;
  // " 100 %", and the last column stays free: some terminals go on from it
  constexpr std::size_t kNoCells = 7 + kTypedInterrupt;
  const std::size_t cells = std::min(kMostCells, columns > kNoCells ? columns - kNoCells : 0);
  const std::uint64_t done = std::min(done_, *total_);
  const auto full = static_cast<std::size_t>(done * cells / *total_);
  const std::string bar = Repeat("█", full) + Repeat("░", cells - full);
  return bar + (bar.empty() ? "" : " ") + std::to_string(done * 100 / *total_) + " %";
}

}  // namespace kivtools
