#pragma once

#include <cstdint>
#include <exception>
#include <span>
#include <utility>
#include <vector>

#include "apps/kivtools/input/BlockReader.h"
#include "apps/kivtools/input/Workers.h"

namespace kivtools {

/// Works through all input in constant memory on all processors, a block of whole records at a time.
/// `work(text, result)` is called from several threads at once and returns the number of lines in the text; first of
/// all it clears the result, which may be that of an earlier block. `deliver(result, line)` is called from the calling
/// thread in the order of the input; `line` is that on which the block begins.
/// What comes in small pieces, as from a person who types, is worked and delivered at once.
///
/// Whatever is thrown by the source, the work or `deliver` is passed on when no worker is left; what was worked out
/// before a fault of the source or the work has been delivered then, of the faulty block too. The line of a LineError
/// is counted from 1 within the block where the work throws it, within the input where it arrives.
///
///     ForEachBlock<std::string>(reader, [](std::span<char> text, std::string& copy) { ...; return lines; },
///                               [&](const std::string& copy, std::uint64_t line) { out.Write(copy); });
template <class Result, class Work, class Deliver>
void ForEachBlock(BlockReader& reader, const Work& work, const Deliver& deliver,
                  Workers::Starter starter = Workers::Start) {
  struct Task {
    Block block;
    Result result{};
    std::uint64_t lines = 0;
    bool given = false;
    Workers::Job job;
  };
  std::vector<Task> tasks(Workers::UsefulNumber() + 1);
  Workers workers(Workers::UsefulNumber(), std::move(starter));  // gone before the tasks are
  std::size_t next = 0;
  std::uint64_t line = reader.FirstLine();
  const auto finish = [&](Task& task) {
    if (!std::exchange(task.given, false)) {
      return;
    }
    workers.Wait(task.job);
    deliver(std::as_const(task.result), line);
    try {
      if (task.job.fault) {
        std::rethrow_exception(task.job.fault);
      }
    } catch (const LineError& error) {
      throw LineError(line - 1 + error.Line(), AsItIs(error.what()));
    }
    line += task.lines;
  };
  const auto finishAll = [&] {
    for (std::size_t i = 0; i < tasks.size(); ++i) {
      finish(tasks[(next + i) % tasks.size()]);  // the oldest first
    }
  };
  const auto read = [&](Block& block) {
    try {
      return reader.Next(block);
    } catch (const BlockReader::RecordTooLong& error) {
      finishAll();
      throw LineError(line, AsItIs(error.what()));
    } catch (...) {
      finishAll();
      throw;
    }
  };
  for (;;) {
    Task& task = tasks[next];
    finish(task);
    if (!read(task.block)) {
      break;
    }
    task.job.work = [&task, &work] { task.lines = work(task.block.Text(), task.result); };
    workers.Give(task.job);
    task.given = true;
    next = (next + 1) % tasks.size();
    if (reader.IsSlow()) {
      finishAll();
    }
  }
  finishAll();
}

}  // namespace kivtools
