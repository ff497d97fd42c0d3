#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

/// What the program shows. Results, messages and progress may share a terminal; they never share a line of it. All of
/// it is called from one thread.
namespace kivtools {

/// What was written could not be passed on: full disk, reader gone. Nothing further is worth trying.
class OutputError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The reader of the output has closed the pipe: it has what it wanted, so the program ends without a word.
class ReaderEnded : public OutputError {
 public:
  using OutputError::OutputError;
};

/// Standard output in large writes. A write that fails throws OutputError.
class Output {
 public:
  void Write(std::string_view text);
  /// Hands everything to the system; the last call of a program that has done its work.
  void Flush();

 private:
  std::string buffer_;
};

/// One line on standard error. A failure to write it has nowhere to be told and is passed over.
void WriteError(std::string_view line) noexcept;

/// A bar on standard error for work that takes more than a second, only where a person watches. It makes way for
/// whatever else is shown and disappears with this object.
class Progress {
 public:
  /// `total` units of work, if that is known; without it they are bytes, shown as MiB. Nothing is shown where `wanted`
  /// is false.
  explicit Progress(std::optional<std::uint64_t> total, bool wanted = true);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// So much more is done; cheap, to be called a block at a time. A failure to show it is passed over.
  void Advance(std::uint64_t units) noexcept;
  /// What is being worked on, shown behind the figures if it has NoteColumns at most. It is called as Advance is.
  void Note(std::string note) noexcept;

  /// Whether a person watches.
  [[nodiscard]] bool IsWatched() const noexcept { return watched_; }
  /// The columns of the terminal that a note may take.
  static std::size_t NoteColumns() noexcept;

 private:
  [[nodiscard]] std::string Line(std::size_t columns) const;
  [[nodiscard]] std::string Figures(std::size_t columns) const;

  using Clock = std::chrono::steady_clock;
  std::optional<std::uint64_t> total_;
  std::uint64_t done_ = 0;
  std::string note_;
  bool watched_;
  Clock::time_point next_;
};

}  // namespace kivtools
