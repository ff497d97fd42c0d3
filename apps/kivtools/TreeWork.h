#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "apps/kivtools/Command.h"

namespace kivtools {

/// Counts what an operation on a file tree does, from the making of this object to its end, and passes on what could
/// not be done: a message with operation, path, the system's text and its code.
class TreeWork {
 public:
  struct Counts {
    std::uint64_t files = 0;
    std::uint64_t folders = 0;
    std::uint64_t bytes = 0;
    std::uint64_t failures = 0;
  };
  using Failed = std::function<void(const Said& message)>;

  TreeWork(const Library& library, Failed failed, Progress* progress = nullptr);
  ~TreeWork();
  TreeWork(const TreeWork&) = delete;
  TreeWork& operator=(const TreeWork&) = delete;

  [[nodiscard]] const Counts& Count() const noexcept { return counts_; }

 private:
  void Add(std::uint64_t bytes);

  const Library& library_;
  Failed failed_;
  Progress* progress_;
  Counts counts_;
};

/// The path that a command is given. Throws InputError, with the usage's `name` for it, where it is empty.
std::filesystem::path GivenPath(const std::string& argument, const std::string& name);

}  // namespace kivtools
