#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <future>
#include <memory>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "apps/kivtools/InputError.h"
#include "apps/kivtools/input/BlockReader.h"

namespace kivtools {

/// Works through the lines of a source in constant memory, a block of whole lines at a time, on all processors.
/// `work(lines, result)` is called from several threads at once, `deliver(result)` from the calling thread in the order
/// of the source. What comes in small pieces, as from a person who types, is worked and delivered at once. A line of
/// more than 16 MiB is refused.
///
///     LineBlocks<std::string> blocks(source);
///     blocks.Run([](std::string_view lines, std::string& copy) { copy = lines; },
///                [&](const std::string& copy) { out.Write(copy); });
template <class Result>
class LineBlocks {
 public:
  static constexpr std::size_t kBlock = std::size_t{512} * 1024;
  static constexpr std::size_t kSmallPiece = 4096;
  static constexpr std::size_t kLongestLine = std::size_t{16} * 1024 * 1024;

  explicit LineBlocks(ByteSource source)
      : source_(std::move(source)), tasks_(std::clamp(std::thread::hardware_concurrency(), 1U, 8U) + 1) {}

  template <class Work, class Deliver>
  void Run(Work work, Deliver deliver) {
    const auto finish = [&](Task& task) {
      if (task.done.valid()) {
        task.done.get();
        deliver(task.result);
      }
    };
    std::size_t next = 0;
    const auto finishAll = [&] {
      for (std::size_t i = 0; i < tasks_.size(); ++i) {
        finish(tasks_[(next + i) % tasks_.size()]);  // the oldest first
      }
    };
    for (;;) {
      Task& task = tasks_[next];
      finish(task);
      const std::string_view lines = Fill(task);
      if (lines.empty()) {
        break;
      }
      const auto how = small_ ? std::launch::deferred : std::launch::async;
      task.done = std::async(how, [&work, &task, lines] { work(lines, task.result); });
      next = (next + 1) % tasks_.size();
      if (small_) {
        finishAll();
      }
    }
    finishAll();
  }

 private:
  struct Task {
    std::unique_ptr<char[]> bytes;
    std::size_t capacity = 0;
    Result result;
    std::future<void> done;  // last: its end waits for the work on the others
  };

  /// Reads a block of whole lines, behind the piece of a line that the block before left over; empty at the end.
  std::string_view Fill(Task& task) {
    std::size_t size = 0;
    Reserve(task, rest_.size() + kBlock, 0);
    std::copy(rest_.begin(), rest_.end(), task.bytes.get());
    size = rest_.size();
    rest_.clear();
    for (;;) {
      Reserve(task, size + kSmallPiece, size);
      const std::size_t count = source_(task.bytes.get() + size, task.capacity - size);
      const std::string_view all(task.bytes.get(), size + count);
      const std::size_t end = count == 0 ? all.size() : all.substr(size).rfind('\n') + 1 + size;
      small_ = count < kSmallPiece;
      if (count == 0 || end > size) {
        rest_.assign(all.begin() + static_cast<std::ptrdiff_t>(end), all.end());
        return all.substr(0, end);
      }
      size += count;
      if (size > kLongestLine) {
        throw InputError("a line of more than 16 MiB");
      }
    }
  }

  static void Reserve(Task& task, std::size_t capacity, std::size_t used) {
    if (task.capacity < capacity) {
      capacity = std::max(capacity, 2 * task.capacity);
      auto larger = std::make_unique_for_overwrite<char[]>(capacity);
      std::copy_n(task.bytes.get(), used, larger.get());
      task.bytes = std::move(larger);
      task.capacity = capacity;
    }
  }

  ByteSource source_;
  std::vector<Task> tasks_;
  std::vector<char> rest_;
  bool small_ = false;
};

/// Calls `visit(line)` for each of the lines, without their ends (LF or CR LF; the last one may lack it).
template <class Visit>
void ForEachLine(std::string_view lines, Visit visit) {
  while (!lines.empty()) {
    const void* const found = std::memchr(lines.data(), '\n', lines.size());
    const std::size_t end =
        found == nullptr ? lines.size() : static_cast<std::size_t>(static_cast<const char*>(found) - lines.data());
    visit(lines.substr(0, end > 0 && lines[end - 1] == '\r' ? end - 1 : end));
    lines.remove_prefix(std::min(end + 1, lines.size()));
  }
}

}  // namespace kivtools
