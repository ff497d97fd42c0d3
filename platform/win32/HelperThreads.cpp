#include "platform/HelperThreads.h"

#include <windows.h>

#include <memory>
#include <utility>

#include "platform/SystemCalls.h"

namespace kiv::platform {
namespace {

/// One more reference to the file that this code was loaded from.
class LibraryReference {
 public:
  explicit LibraryReference(TextView context) {
    if (GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<LPCWSTR>(&SystemHelperThreads),
                           &module_) == 0) {
      LastStatus().Throw(context);
    }
  }
  ~LibraryReference() {
    if (module_ != nullptr) {
      FreeLibrary(module_);
    }
  }
  LibraryReference(LibraryReference&& other) noexcept : module_(std::exchange(other.module_, nullptr)) {}
  LibraryReference& operator=(LibraryReference&&) = delete;

  [[nodiscard]] HMODULE Release() noexcept { return std::exchange(module_, nullptr); }

 private:
  HMODULE module_ = nullptr;
};

struct Task {
  LibraryReference library;
  std::function<void()> work;
};

DWORD WINAPI RunTask(void* argument) noexcept {
  HMODULE library = nullptr;
  {
    const std::unique_ptr<Task> task(static_cast<Task*>(argument));
    library = task->library.Release();
    task->work();
  }
  FreeLibraryAndExitThread(library, 0);  // does not come back here, where nothing may be left
}

class Win32HelperThreads : public HelperThreads {
 public:
  void Start(TextView context, std::function<void()> work) const override {
    auto task = std::make_unique<Task>(Task{LibraryReference(context), std::move(work)});
    Admitted(SystemCall::StartThread).OrThrow(context);
    const HANDLE thread = CreateThread(nullptr, 0, &RunTask, task.get(), 0, nullptr);
    if (thread == nullptr) {
      LastStatus().Throw(context);
    }
    [[maybe_unused]] const Task* const nowTheThreads = task.release();
    CloseHandle(thread);
  }
};

}  // namespace

const HelperThreads& SystemHelperThreads() noexcept {
  static const Win32HelperThreads threads;
  return threads;
}

}  // namespace kiv::platform
