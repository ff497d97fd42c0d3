#include "platform/HelperThreads.h"

#include <dlfcn.h>
#include <link.h>
#include <pthread.h>

#include <bit>
#include <memory>
#include <utility>

#include "platform/SystemCalls.h"

namespace kiv::platform {
namespace {

/// One more reference to the file that this code was loaded from, null where that is the program itself.
class LibraryReference {
 public:
  explicit LibraryReference(TextView context) {
    Dl_info file{};
    void* entry = nullptr;
    if (dladdr1(reinterpret_cast<const void*>(&SystemHelperThreads), &file, &entry, RTLD_DL_LINKMAP) == 0) {
      return;
    }
    const char* const name = static_cast<const link_map*>(entry)->l_name;
    if (*name == '\0') {
      return;
    }
    handle_ = dlopen(name, RTLD_NOW | RTLD_NOLOAD);
    if (handle_ == nullptr) {
      const char* const reason = dlerror();
      throw OsError(0, Text(context) + ": " + (reason != nullptr ? reason : name));
    }
  }
  ~LibraryReference() {
    if (handle_ != nullptr) {
      dlclose(handle_);
    }
  }
  LibraryReference(LibraryReference&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  LibraryReference& operator=(LibraryReference&&) = delete;

  [[nodiscard]] void* Release() noexcept { return std::exchange(handle_, nullptr); }

 private:
  void* handle_ = nullptr;
};

/// Gives a thread's reference back after its last instruction in the library: a destructor of thread data is called by
/// the system's own code, so that dlclose may take this code away and still return.
class CloseAtEnd {
 public:
  CloseAtEnd() noexcept : usable_(pthread_key_create(&key_, std::bit_cast<void (*)(void*)>(&dlclose)) == 0) {}
  ~CloseAtEnd() {
    if (usable_) {
      pthread_key_delete(key_);
    }
  }
  CloseAtEnd(const CloseAtEnd&) = delete;
  CloseAtEnd& operator=(const CloseAtEnd&) = delete;

  /// For the calling thread. Where it cannot be arranged the library stays loaded for ever, which is safe too.
  void Arrange(LibraryReference reference) const noexcept {
    void* const handle = reference.Release();
    if (handle != nullptr && usable_) {
      pthread_setspecific(key_, handle);
    }
  }

 private:
  pthread_key_t key_{};
  bool usable_;
};

const CloseAtEnd& Closing() noexcept {
  static const CloseAtEnd closing;
  return closing;
}

struct Task {
  LibraryReference library;
  std::function<void()> work;
};

void* RunTask(void* argument) noexcept {
  const std::unique_ptr<Task> task(static_cast<Task*>(argument));
  Closing().Arrange(std::move(task->library));
  task->work();
  return nullptr;
}

class PosixHelperThreads : public HelperThreads {
 public:
  void Start(TextView context, std::function<void()> work) const override {
    auto task = std::make_unique<Task>(Task{LibraryReference(context), std::move(work)});
    pthread_t thread{};
    Admitted(SystemCall::StartThread).OrThrow(context);
    const int code = pthread_create(&thread, nullptr, &RunTask, task.get());
    if (code != 0) {
      throw SystemError(context, code);
    }
    [[maybe_unused]] const Task* const nowTheThreads = task.release();
    pthread_detach(thread);
  }
};

}  // namespace

const HelperThreads& SystemHelperThreads() noexcept {
  static const PosixHelperThreads threads;
  return threads;
}

}  // namespace kiv::platform
