#include "platform/WindowSystem.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <map>
#include <new>

#include "core/WideText.h"

namespace kiv::platform {
namespace {

HWND AsWindow(Handle window) noexcept {
  return reinterpret_cast<HWND>(window);  // NOLINT(performance-no-int-to-ptr): a handle is a number in a pointer
}

// What the byte 0xBD is in the titles of diskettes, on a system of Central Europe and on a Western one.
constexpr char kHalf = '\xBD';
constexpr wchar_t kDoubleAcute = L'\u02DD';
constexpr wchar_t kOneHalf = L'\u00BD';

Text TextFromWindow(std::wstring_view wide) {
  Text text = ShownText(wide);
  for (std::size_t i = 0; i < wide.size(); ++i) {
    if (wide[i] == kOneHalf) {
      text[i] = kHalf;
    }
  }
  return text;
}

std::wstring WideForWindow(TextView text) {
  constexpr UINT kCentralEurope = 1250;
  const wchar_t half = GetACP() == kCentralEurope ? kDoubleAcute : kOneHalf;
  std::wstring wide;
  for (const char byte : text) {
    wide.push_back(byte == kHalf ? half
                                 : static_cast<wchar_t>(windows1250::ToUnicode(static_cast<unsigned char>(byte))));
  }
  return wide;
}

/// What an enumeration has come to; it ends early for want of memory.
struct Found {
  HWND parent = nullptr;
  std::vector<Handle> windows;
};

BOOL Keep(Found& found, HWND window) noexcept {
  try {
    found.windows.push_back(reinterpret_cast<Handle>(window));
    return TRUE;
  } catch (const std::bad_alloc&) {
    return FALSE;
  }
}

BOOL CALLBACK KeepAny(HWND window, LPARAM found) {
  return Keep(*reinterpret_cast<Found*>(found), window);
}

BOOL CALLBACK KeepChild(HWND window, LPARAM argument) {
  auto& found = *reinterpret_cast<Found*>(argument);
  return GetAncestor(window, GA_PARENT) == found.parent ? Keep(found, window) : TRUE;
}

int OwnersOf(Handle window) {
  int owners = 0;
  for (HWND owner = GetWindow(AsWindow(window), GW_OWNER); owner != nullptr; owner = GetWindow(owner, GW_OWNER)) {
    ++owners;
  }
  return owners;
}

class SystemThreadWindows : public ThreadWindows {
 public:
  ~SystemThreadWindows() override {
    AnswerOthers();
    for (auto& [window, letters] : late_) {
      if (letters != nullptr && !HasAnswered(AsWindow(window))) {
        // Its thread may still write there, whenever it goes on.
        [[maybe_unused]] const wchar_t* const theirs = letters.release();
      }
    }
  }

  [[nodiscard]] std::vector<Handle> TopLevel() const override {
    Found found;
    EnumThreadWindows(thread_, &KeepAny, reinterpret_cast<LPARAM>(&found));
    std::ranges::reverse(found.windows);  // the system names the uppermost first
    std::ranges::stable_sort(found.windows, {}, &OwnersOf);
    return std::move(found.windows);
  }

  [[nodiscard]] std::vector<Handle> Children(Handle window) const override {
    Found found{AsWindow(window), {}};
    EnumChildWindows(found.parent, &KeepChild, reinterpret_cast<LPARAM>(&found));
    return std::move(found.windows);
  }

  [[nodiscard]] Text ClassOf(Handle window) const override {
    std::array<wchar_t, 1024> name{};
    const int length = GetClassNameW(AsWindow(window), name.data(), static_cast<int>(name.size()));
    return ShownText(std::wstring_view(name.data(), static_cast<std::size_t>(length)));
  }

  [[nodiscard]] std::optional<Text> TextOf(Handle window, std::chrono::milliseconds limit) override {
    // The window's thread writes to this address, perhaps long after this thread has given up.
    Letters letters = LettersFor(window);
    letters[0] = L'\0';
    DWORD_PTR length = 0;
    const LRESULT answered =
        SendMessageTimeoutW(AsWindow(window), WM_GETTEXT, kRoom, reinterpret_cast<LPARAM>(letters.get()), SMTO_NORMAL,
                            static_cast<UINT>(limit.count()), &length);
    if (answered == 0) {
      late_[window] = std::move(letters);
      return std::nullopt;
    }
    const std::size_t count = std::min<std::size_t>(length, kRoom - 1);
    return TextFromWindow({letters.get(), count});
  }

  void SetText(Handle window, TextView text) override {
    SendMessageW(AsWindow(window), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(WideForWindow(text).c_str()));
  }

  void Resize(Handle window, std::int32_t width, std::int32_t height) override {
    SetWindowPos(AsWindow(window), nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
  }

  void Click(Handle window) override {
    PostMessageW(AsWindow(window), WM_LBUTTONDOWN, 0, 0);
    PostMessageW(AsWindow(window), WM_LBUTTONUP, 0, 0);
  }

  [[nodiscard]] Handle Foreground() const override { return reinterpret_cast<Handle>(GetForegroundWindow()); }

  void AnswerOthers() override {
    MSG message;
    PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
  }

 private:
  using Letters = std::unique_ptr<wchar_t[]>;
  static constexpr std::size_t kRoom = 1024;

  /// Those that the window may still write to, so that a window that hangs keeps one address and no more.
  Letters LettersFor(Handle window) {
    const auto late = late_.find(window);
    if (late == late_.end()) {
      late_[window];  // so that giving up needs no memory
      return std::make_unique<wchar_t[]>(kRoom);
    }
    return late->second != nullptr ? std::move(late->second) : std::make_unique<wchar_t[]>(kRoom);
  }

  /// Messages are answered in their order: who answers this one has answered those before it.
  [[nodiscard]] bool HasAnswered(HWND window) const {
    constexpr UINT kLimit = 100;
    DWORD_PTR ignored = 0;
    return IsWindow(window) == 0 || GetWindowThreadProcessId(window, nullptr) == thread_ ||
           SendMessageTimeoutW(window, WM_NULL, 0, 0, SMTO_NORMAL, kLimit, &ignored) != 0;
  }

  DWORD thread_ = GetCurrentThreadId();
  std::map<Handle, Letters> late_;
};

}  // namespace

std::unique_ptr<ThreadWindows> WindowSystem::OfThisThread(TextView /*operation*/) const {
  return std::make_unique<SystemThreadWindows>();
}

}  // namespace kiv::platform
