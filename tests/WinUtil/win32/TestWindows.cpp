#include "WinUtil/TestWindows.h"

#include <windows.h>

#include <map>

#include "kivtools/Text.h"

namespace kiv {
namespace {

HWND AsWindow(Handle window) {
  return reinterpret_cast<HWND>(window);  // NOLINT(performance-no-int-to-ptr): a handle is a number in a pointer
}

/// The byte 0xBD stands for the one half of a Western system, as in the titles of its dialogs.
std::wstring Wide(TextView text) {
  std::wstring wide;
  for (const char byte : text) {
    wide.push_back(byte == '\xBD' ? L'\u00BD'
                                  : static_cast<wchar_t>(windows1250::ToUnicode(static_cast<unsigned char>(byte))));
  }
  return wide;
}

std::vector<Handle>* clicks_of_dialogs = nullptr;
WNDPROC system_procedure = nullptr;

/// A dialog is told of its buttons when they were pressed and released.
LRESULT CALLBACK NoteClicks(HWND dialog, UINT message, WPARAM wide, LPARAM argument) {
  if (message == WM_COMMAND && HIWORD(wide) == BN_CLICKED && argument != 0) {
    clicks_of_dialogs->push_back(static_cast<Handle>(argument));
    return 0;
  }
  return CallWindowProcW(system_procedure, dialog, message, wide, argument);
}

}  // namespace

struct TestWindows::State {
  std::vector<Handle> clicks;
  std::vector<HWND> dialogs;
};

TestWindows::TestWindows() : state_(std::make_unique<State>()) {
  clicks_of_dialogs = &state_->clicks;
}

TestWindows::~TestWindows() {
  for (const HWND dialog : state_->dialogs) {
    DestroyWindow(dialog);
  }
  clicks_of_dialogs = nullptr;
}

Handle TestWindows::Make(TextView className, TextView text, Handle parent) {
  const DWORD style = className == "ComboBox" ? DWORD{CBS_DROPDOWNLIST} : 0;
  const HWND window = CreateWindowExW(0, Wide(className).c_str(), Wide(text).c_str(), WS_CHILD | WS_VISIBLE | style, 5,
                                      7, 30, 10, AsWindow(parent), nullptr, nullptr, nullptr);
  if (className == "ComboBox") {
    SendMessageW(window, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(Wide(text).c_str()));
    SendMessageW(window, CB_SETCURSEL, 0, 0);
  }
  return reinterpret_cast<Handle>(window);
}

Handle TestWindows::MakeDialog(TextView caption, Handle owner) {
  const HWND dialog = CreateWindowExW(0, L"#32770", Wide(caption).c_str(), WS_OVERLAPPED | WS_CAPTION | WS_VISIBLE, 50,
                                      50, 400, 300, AsWindow(owner), nullptr, nullptr, nullptr);
  system_procedure =
      reinterpret_cast<WNDPROC>(SetWindowLongPtrW(dialog, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&NoteClicks)));
  state_->dialogs.push_back(dialog);
  return reinterpret_cast<Handle>(dialog);
}

void TestWindows::Destroy(Handle window) {
  std::erase(state_->dialogs, AsWindow(window));
  DestroyWindow(AsWindow(window));
}

void TestWindows::SetText(Handle window, TextView text) {
  SetWindowTextW(AsWindow(window), Wide(text).c_str());
}

Text TestWindows::TextOf(Handle window) const {
  std::wstring wide(1024, L'\0');
  wide.resize(static_cast<std::size_t>(GetWindowTextW(AsWindow(window), wide.data(), static_cast<int>(wide.size()))));
  Text text;
  for (const wchar_t unit : wide) {
    text.push_back(unit == L'\u00BD' ? '\xBD' : static_cast<char>(windows1250::FromUnicode(unit).value_or('?')));
  }
  return text;
}

host::Rect TestWindows::BoundsOf(Handle window) const {
  RECT bounds{};
  GetWindowRect(AsWindow(window), &bounds);
  MapWindowPoints(nullptr, GetParent(AsWindow(window)), reinterpret_cast<POINT*>(&bounds), 2);
  return {bounds.left, bounds.top, bounds.right, bounds.bottom};
}

void TestWindows::BringToFront(Handle window) {
  SetForegroundWindow(AsWindow(window));
}

void TestWindows::Serve() {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

std::vector<Handle> TestWindows::TakeClicks() {
  return std::exchange(state_->clicks, {});
}

void TestWindows::Hang(std::chrono::milliseconds duration) {
  Sleep(static_cast<DWORD>(duration.count()));
}

}  // namespace kiv
