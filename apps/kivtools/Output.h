#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace kivtools {

/// What was written could not be passed on: full disk, reader gone. Nothing further is worth trying.
class OutputError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Standard output in large writes. A write that fails throws OutputError.
class Output {
 public:
  void Write(std::string_view text);
  /// Hands everything to the system; the last call of a program that has done its work.
  void Flush();

 private:
  static void Pass(std::string_view bytes);

  std::string buffer_;
};

/// One line on standard error. A failure to write it has nowhere to be told and is passed over.
void WriteError(std::string_view line) noexcept;

/// A bar on standard error for work that takes more than a second, only where a person watches. It disappears with
/// this object.
class Progress {
 public:
  /// `total` bytes of work, if that is known.
  explicit Progress(std::optional<std::uint64_t> total);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// So much more is done; cheap, to be called a block at a time.
  void Advance(std::uint64_t bytes);

 private:
  void Draw() const;

  using Clock = std::chrono::steady_clock;
  std::optional<std::uint64_t> total_;
  std::uint64_t done_ = 0;
  bool watched_;
  bool drawn_ = false;
  Clock::time_point next_;
};

}  // namespace kivtools
