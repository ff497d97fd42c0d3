#include <windows.h>

#include <memory>

#include "core/WideText.h"
#include "host/win32/Services.h"
#include "platform/SystemCalls.h"

namespace kiv::host::win32 {
namespace {

struct WindowDeleter {
  void operator()(HWND window) const noexcept { DestroyWindow(window); }
};
using OwnedWindow = std::unique_ptr<std::remove_pointer_t<HWND>, WindowDeleter>;

struct GlobalDeleter {
  void operator()(HGLOBAL memory) const noexcept { GlobalFree(memory); }
};
using OwnedGlobal = std::unique_ptr<std::remove_pointer_t<HGLOBAL>, GlobalDeleter>;

/// The clipboard opened by this thread; closed with this object. Emptying needs a window as the clipboard's owner, and
/// the library has none of its own; the content outlives it.
class OpenedClipboard {
 public:
  OpenedClipboard() {
    platform::Admitted(platform::SystemCall::MakeWindow).OrThrow(kRefused);
    window_.reset(CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr));
    if (window_ == nullptr) {
      platform::LastStatus().Throw(kRefused);
    }
    // Another program may hold the clipboard for a moment.
    constexpr int kAttempts = 20;
    constexpr DWORD kPauseInMilliseconds = 10;
    for (int attempt = 0; OpenClipboard(window_.get()) == 0; ++attempt) {
      if (attempt == kAttempts) {
        platform::LastStatus().Throw(kRefused);
      }
      Sleep(kPauseInMilliseconds);
    }
  }
  ~OpenedClipboard() { CloseClipboard(); }
  OpenedClipboard(const OpenedClipboard&) = delete;
  OpenedClipboard& operator=(const OpenedClipboard&) = delete;

 private:
  static constexpr TextView kRefused = "Nu pot deschide clipboard-ul";

  OwnedWindow window_;
};

/// The text as zero-terminated wide characters in memory that the clipboard can take over.
OwnedGlobal WideCopy(TextView text) {
  OwnedGlobal memory(GlobalAlloc(GMEM_MOVEABLE, (text.size() + 1) * sizeof(wchar_t)));
  auto* wide = memory != nullptr ? static_cast<wchar_t*>(GlobalLock(memory.get())) : nullptr;
  if (wide == nullptr) {
    platform::LastStatus().Throw("Clipboard: memorie insuficienta");
  }
  for (const char byte : text) {
    *wide++ = static_cast<wchar_t>(windows1250::ToUnicode(static_cast<unsigned char>(byte)));
  }
  *wide = L'\0';
  GlobalUnlock(memory.get());
  return memory;
}

}  // namespace

void Clipboard::SetText(TextView text) {
  OwnedGlobal copy = WideCopy(text);
  const OpenedClipboard opened;
  if (EmptyClipboard() == 0 || SetClipboardData(CF_UNICODETEXT, copy.get()) == nullptr) {
    platform::LastStatus().Throw("Nu pot scrie in clipboard");
  }
  [[maybe_unused]] const HGLOBAL nowTheSystems = copy.release();
}

Text Clipboard::GetText() {
  const OpenedClipboard opened;
  Text text;
  const HANDLE memory = GetClipboardData(CF_UNICODETEXT);
  const auto* const wide = memory != nullptr ? static_cast<const wchar_t*>(GlobalLock(memory)) : nullptr;
  if (wide != nullptr) {
    const std::size_t most = GlobalSize(memory) / sizeof(wchar_t);
    const std::wstring_view units(wide, most);
    text = ShownText(units.substr(0, units.find(L'\0')));
    GlobalUnlock(memory);
  }
  return text;
}

}  // namespace kiv::host::win32
