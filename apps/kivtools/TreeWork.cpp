#include "apps/kivtools/TreeWork.h"

#include <utility>

#include "apps/kivtools/system/Paths.h"

namespace kivtools {
namespace {

/// No exception passes through the library's C interface.
template <class Call>
KivStatus Guarded(Call&& call) noexcept {
  try {
    call();
    return KIV_OK;
  } catch (...) {
    return -KIV_ERROR_OUT_OF_MEMORY;
  }
}

}  // namespace

TreeWork::TreeWork(const Library& library, Failed failed, Progress* progress)
    : library_(library), failed_(std::move(failed)), progress_(progress) {
  KivTreeWatcher watcher{};
  watcher.size = sizeof watcher;
  watcher.context = this;
  watcher.file = [](void* context, const char* /*path*/, std::size_t /*length*/, std::uint64_t bytes) {
    static_cast<TreeWork*>(context)->Add(bytes);
    return KivStatus{KIV_OK};
  };
  watcher.folder = [](void* context, const char* /*path*/, std::size_t /*length*/) {
    ++static_cast<TreeWork*>(context)->counts_.folders;
    return KivStatus{KIV_OK};
  };
  watcher.failure = [](void* context, const char* /*path*/, std::size_t /*length*/, const char* message,
                       std::size_t length, std::int32_t code) {
    auto& work = *static_cast<TreeWork*>(context);
    ++work.counts_.failures;
    return Guarded([&] { work.failed_(work.library_.SystemMessage({message, length}, code)); });
  };
  library_.WatchTrees(&watcher);
}

TreeWork::~TreeWork() {
  try {
    library_.WatchTrees(nullptr);
  } catch (...) {  // NOLINT(bugprone-empty-catch): ending a watch needs nothing that could fail
  }
}

void TreeWork::Add(std::uint64_t bytes) {
  ++counts_.files;
  counts_.bytes += bytes;
  if (progress_ != nullptr) {
    progress_->Advance(bytes);
  }
}

std::filesystem::path GivenPath(const std::string& argument, const std::string& name) {
  if (argument.empty()) {
    throw InputError(Say({"{0} is empty", "{0} este gol"}, name));
  }
  return PathFromUtf8(argument);
}

}  // namespace kivtools
