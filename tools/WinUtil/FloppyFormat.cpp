#include <atomic>
#include <exception>
#include <utility>

#include "kivtools/Host.h"
#include "kivtools/WinUtil/Floppy.h"
#include "platform/Diskettes.h"
#include "platform/HelperThreads.h"
#include "platform/Timer.h"
#include "tools/WinUtil/FormatBoxes.h"

namespace kiv {
namespace {

using format_boxes::Found;
using format_boxes::kControls;
using std::chrono::milliseconds;

constexpr TextView kNoDisk =
    "Nu exista nici o discheta in unitate sau discheta introdusa este defecta. Asigurati-va ca exista o discheta in "
    "unitate si ca aceasta este introdusa corect";
constexpr TextView kEraseWarning =
    "ATENTIE: Formatarea va sterge toate datele de pe aceasta discheta.\n\r"
    "Pentru a formata discheta, apasati OK. Pentru a renunta, apasati Renunt.";

/// What the user would do in the system's format dialog, and would read there, done for them.
class FormatHelper {
 public:
  explicit FormatHelper(platform::ThreadWindows& windows) : windows_(windows) {}

  void Pass() {
    if (begun_) {
      Sleep(milliseconds(10));
    }
    const Found found = format_boxes::Look(windows_);
    if (!begun_) {
      Begin(found);
    } else if (found.message == format_boxes::Message::NoDisk) {
      TranslateNoDisk(found);
    } else if (found.message == format_boxes::Message::EraseWarning) {
      ConfirmErasing(found);
    } else if (found.results != 0) {
      Finish(found, found.resultsClose);
    } else if (const Handle ok = format_boxes::FindCompletionOk(windows_); ok != 0) {
      Finish(found, ok);
    }
  }

 private:
  /// A dialog with fewer known controls is that of another language, whose user does it all.
  void Begin(const Found& found) {
    constexpr std::int32_t kTooFew = 3;
    if (found.main == 0 || found.Count() <= kTooFew) {
      return;
    }
    begun_ = true;
    SetText(found.main, format_boxes::kRomanianCaption);
    for (std::size_t i = 0; i < kControls.size(); ++i) {
      SetText(found.controls[i], kControls[i].romanian);
      if (found.controls[i] != 0 && kControls[i].width != 0) {
        windows_.Resize(found.controls[i], kControls[i].width, format_boxes::kLabelHeight);
      }
    }
    Click(found.controls[format_boxes::kQuickOption]);
    Click(found.controls[format_boxes::kStartButton]);
  }

  /// The user decides.
  void TranslateNoDisk(const Found& found) {
    SetText(found.popup, format_boxes::kRomanianCaption);
    SetText(found.popupRetry, "Repeta");
    SetText(found.popupCancel, "Renunt");
    SetText(found.popupText, kNoDisk);
  }

  void ConfirmErasing(const Found& found) {
    SetText(found.popupText, kEraseWarning);
    SetText(found.popupOk, "Ok");
    SetText(found.popupCancel, "Renunt");
    Click(found.popupOk);
  }

  void Finish(const Found& found, Handle button) {
    Click(button);
    Sleep(milliseconds(50));
    Click(found.controls[format_boxes::kCloseButton]);
  }

  void SetText(Handle window, TextView text) {
    if (window != 0 && !text.empty()) {
      windows_.SetText(window, text);
    }
  }
  void Click(Handle window) {
    if (window != 0) {
      windows_.Click(window);
    }
  }
  static void Sleep(milliseconds duration) { platform::timer_service.Current().Sleep(duration); }

  platform::ThreadWindows& windows_;
  bool begun_ = false;
};

/// The helper on a thread of its own, for as long as the calling thread formats.
class FormatBoxThread {
 public:
  explicit FormatBoxThread(TextView operation)
      : windows_(platform::window_system_service.Current().OfThisThread(operation)) {
    platform::helper_threads.Current().Start(operation, [this] { Run(); });
  }
  ~FormatBoxThread() {
    static_cast<void>(WaitForEnd());  // another failure is on its way
  }
  FormatBoxThread(const FormatBoxThread&) = delete;
  FormatBoxThread& operator=(const FormatBoxThread&) = delete;

  /// Throws what the application has thrown meanwhile.
  void End() {
    if (const std::exception_ptr failure = WaitForEnd()) {
      std::rethrow_exception(failure);
    }
  }

 private:
  void Run() noexcept {
    try {
      for (FormatHelper helper(*windows_); !stop_;) {
        helper.Pass();
      }
    } catch (...) {  // NOLINT(bugprone-empty-catch): the user does the rest
    }
    done_ = true;  // the last that this thread knows of the object
  }

  /// The thread's last clicks are for windows of this one, and it may be waiting for an answer of theirs.
  std::exception_ptr WaitForEnd() noexcept {
    std::exception_ptr failure;
    stop_ = true;
    while (!done_) {
      windows_->AnswerOthers();
      try {
        ServeApplication(failure != nullptr);
      } catch (...) {
        failure = std::current_exception();
      }
      platform::timer_service.Current().Sleep(milliseconds(1));
    }
    return failure;
  }

  static void ServeApplication(bool hasFailed) {
    host::Application& application = host::Current().GetApplication();
    if (!hasFailed && application.OnMainThread()) {
      application.ProcessMessages();
    }
  }

  std::unique_ptr<platform::ThreadWindows> windows_;
  std::atomic<bool> stop_ = false;
  std::atomic<bool> done_ = false;
};

std::int32_t FullFormat(TextView operation, Handle owner, std::uint32_t drive) {
  FormatBoxThread thread(operation);
  const std::int32_t result = platform::diskettes_service.Current().ShowFormatDialog(operation, owner, drive);
  thread.End();
  return result;
}

}  // namespace

std::int32_t FullFormatDriveA(Handle owner) {
  return FullFormat("FullFormatDriveA", owner, 0);
}

std::int32_t FullFormatDriveB(Handle owner) {
  return FullFormat("FullFormatDriveB", owner, 1);
}

}  // namespace kiv
