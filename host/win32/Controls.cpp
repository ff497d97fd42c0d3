#include <windows.h>

#include <string>

#include "core/WideText.h"
#include "host/win32/Watching.h"
#include "host/win32/WideTexts.h"
#include "platform/SystemCalls.h"

namespace kiv::host::win32 {
namespace {

Text TextOfWindow(HWND window) {
  std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
  const int length = GetWindowTextW(window, text.data(), static_cast<int>(text.size()));
  text.resize(static_cast<std::size_t>(length));
  return ShownText(std::wstring_view(text));
}

/// A window's device context with its font in use.
class TextDevice {
 public:
  explicit TextDevice(HWND window) : window_(window) {
    platform::Admitted(platform::SystemCall::MakeDrawing).OrThrow(kRefused);
    device_ = GetDC(window);
    if (device_ == nullptr) {
      platform::LastStatus().Throw(kRefused);
    }
    const auto font = reinterpret_cast<HGDIOBJ>(SendMessageW(window, WM_GETFONT, 0, 0));
    before_ = font != nullptr ? SelectObject(device_, font) : nullptr;
  }
  ~TextDevice() {
    if (before_ != nullptr) {
      SelectObject(device_, before_);
    }
    ReleaseDC(window_, device_);
  }
  TextDevice(const TextDevice&) = delete;
  TextDevice& operator=(const TextDevice&) = delete;

  [[nodiscard]] Size Extent(const std::wstring& text) const {
    SIZE extent{};
    // The height of an empty text is that of a line.
    const std::wstring& measured = text.empty() ? L" " : text;
    if (GetTextExtentPoint32W(device_, measured.data(), static_cast<int>(measured.size()), &extent) == 0) {
      platform::LastStatus().Throw(kRefused);
    }
    return {text.empty() ? 0 : extent.cx, extent.cy};
  }

 private:
  static constexpr TextView kRefused = "Nu pot masura textul";

  HWND window_;
  HDC device_ = nullptr;
  HGDIOBJ before_ = nullptr;
};

/// A window as long as it is the same one: the system gives a number again when a window has gone.
class SystemWindow : public Window {
 public:
  explicit SystemWindow(HWND window) : window_(window), thread_(GetWindowThreadProcessId(window, nullptr)) {}

  [[nodiscard]] bool Visible() const noexcept override {
    return thread_ != 0 && GetWindowThreadProcessId(window_, nullptr) == thread_ && IsWindowVisible(window_) != 0;
  }
  void Maximise() noexcept override {
    if (Visible()) {
      ShowWindow(window_, SW_MAXIMIZE);
    }
  }

 private:
  HWND window_;
  DWORD thread_;
};

}  // namespace

std::vector<host::Control*> Panel::Children() const {
  std::erase_if(unnamed_, [](const auto& control) { return control->NativeWindow() == 0; });
  std::vector<host::Control*> children;
  for (HWND child = ::GetWindow(reinterpret_cast<HWND>(NativeWindow()), GW_CHILD); child != nullptr;
       child = ::GetWindow(child, GW_HWNDNEXT)) {
    WatchedWindow* watched = Watching::Of(child);
    if (watched == nullptr) {
      // Joining the panel's tree changes nothing that can be seen of it.
      auto* const self = const_cast<Panel*>(this);
      unnamed_.push_back(std::make_unique<win32::Control>(self, TextOfWindow(child), reinterpret_cast<Handle>(child)));
      watched = unnamed_.back().get();
    }
    children.push_back(&watched->WatchedControl());
  }
  return children;
}

Label::Label(LayoutNode* container, Text name, Handle window, Text className)
    : OverWindow(container, std::move(name), window, std::move(className)) {
  // An ampersand in a path is no mark of a shortcut, and a long text stays in its line.
  const HWND label = reinterpret_cast<HWND>(window);
  const auto style = static_cast<DWORD>(GetWindowLongPtrW(label, GWL_STYLE));
  SetWindowLongPtrW(label, GWL_STYLE,
                    static_cast<LONG>((style & ~static_cast<DWORD>(SS_TYPEMASK)) | SS_LEFTNOWORDWRAP | SS_NOPREFIX));
  Fit();
}

Text Label::Caption() const {
  return TextOfWindow(reinterpret_cast<HWND>(NativeWindow()));
}

void Label::SetCaption(TextView caption) {
  if (NativeWindow() == 0) {
    return;
  }
  if (SetWindowTextW(reinterpret_cast<HWND>(NativeWindow()), Wide(caption).c_str()) == 0) {
    platform::LastStatus().Throw("Nu pot scrie textul etichetei");
  }
  Fit();
}

void Label::Repaint() {
  RedrawWindow(reinterpret_cast<HWND>(NativeWindow()), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
}

void Label::ScaleFont(std::int32_t multiplier, std::int32_t divisor) {
  ScaleWindowFont(multiplier, divisor);
  Fit();
}

void Label::Fit() {
  const HWND window = reinterpret_cast<HWND>(NativeWindow());
  if (window == nullptr) {
    return;
  }
  const Size extent = TextDevice(window).Extent(Wide(Caption()));
  const Rect now = Place();
  PutAt(Rect::At(now.left, now.top, extent.width, extent.height));
}

std::shared_ptr<Window> Form::GetWindow() {
  return std::make_shared<SystemWindow>(reinterpret_cast<HWND>(NativeWindow()));
}

}  // namespace kiv::host::win32
