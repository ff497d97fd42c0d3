#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>

#include "host/BuiltIn.h"
#include "kivtools/Host/Headless.h"

namespace kiv::host {

namespace win32 {
bool StationIsVisible(HWINSTA station) noexcept;
}

namespace {

using namespace literals;

TEST(WindowedHost, ServesWhereThereIsADesktop) {
  ASSERT_NE(WindowedHost(), nullptr);
  EXPECT_EQ(&Current(), WindowedHost());
  EXPECT_EQ(dynamic_cast<headless::Host*>(&Current()), nullptr);
  // A service's station is one that nobody sees.
  const HWINSTA unseen = CreateWindowStationW(L"KivTestStation", 0, WINSTA_ALL_ACCESS, nullptr);
  ASSERT_NE(unseen, nullptr);
  EXPECT_FALSE(win32::StationIsVisible(unseen));
  EXPECT_TRUE(win32::StationIsVisible(GetProcessWindowStation()));
  EXPECT_FALSE(win32::StationIsVisible(nullptr));
  CloseWindowStation(unseen);
}

TEST(Win32Screen, SaysWhatTheSystemSays) {
  Screen& screen = Current().GetScreen();
  const std::vector<Monitor> monitors = screen.Monitors();
  ASSERT_FALSE(monitors.empty());
  EXPECT_EQ(monitors[0].bounds, (Rect{0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)}));
  RECT work{};
  SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
  EXPECT_EQ(monitors[0].workArea, (Rect{work.left, work.top, work.right, work.bottom}));
  SetCursorPos(123, 45);
  EXPECT_EQ(screen.MousePosition(), (Point{123, 45}));
  EXPECT_EQ(screen.PixelsPerInch(), 96);
  LOGFONTW icon{};
  SystemParametersInfoW(SPI_GETICONTITLELOGFONT, sizeof icon, &icon, 0);
  EXPECT_EQ(screen.MessageFontHeight(), icon.lfHeight);  // one size for both where nobody changed them

  const HDC device = GetDC(nullptr);
  for (const int number : {4, 6, 8, 10, 110, 111, 112, 113}) {
    EXPECT_EQ(screen.Capability(reinterpret_cast<Handle>(device), DeviceCapability{number}),
              GetDeviceCaps(device, number));
    EXPECT_EQ(screen.Capability(0, DeviceCapability{number}), 0);
  }
  ReleaseDC(nullptr, device);
}

TEST(Win32Colours, AreTheDesktops) {
  const COLORREF mine = 0x00563412;
  const int which = COLOR_WINDOW;
  const COLORREF before = GetSysColor(which);
  SetSysColors(1, &which, &mine);
  EXPECT_EQ(Current().GetColours().Resolve(0x80000005), mine);
  SetSysColors(1, &which, &before);
  EXPECT_EQ(Current().GetColours().Resolve(0xFF000005), before);
  EXPECT_EQ(Current().GetColours().Resolve(0xFF0000F0), 0U);
}

/// Presses a button of the dialog with that title as soon as it is shown, and keeps what it said.
class Presser {
 public:
  Presser(std::wstring title, int button)
      : thread_([this, title = std::move(title), button] { Press(title.c_str(), button); }) {}
  ~Presser() { thread_.join(); }
  Presser(const Presser&) = delete;
  Presser& operator=(const Presser&) = delete;

  std::wstring said;

 private:
  void Press(const wchar_t* title, int button) {
    for (int attempt = 0; attempt < 1'000; ++attempt) {
      const HWND box = FindWindowW(L"#32770", title);
      if (box != nullptr && IsWindowVisible(box) != 0 && GetDlgItem(box, button) != nullptr) {
        EnumChildWindows(box, &Keep, reinterpret_cast<LPARAM>(this));
        PostMessageW(box, WM_COMMAND, static_cast<WPARAM>(button), 0);
        return;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    ADD_FAILURE() << "no dialog with that button";
  }
  static BOOL CALLBACK Keep(HWND child, LPARAM argument) {
    std::wstring text(1'024, L'\0');
    text.resize(static_cast<std::size_t>(GetWindowTextW(child, text.data(), static_cast<int>(text.size()))));
    reinterpret_cast<Presser*>(argument)->said += L"[" + text + L"]";
    return TRUE;
  }
  std::thread thread_;
};

TEST(Win32Dialogs, GiveTheButtonThatWasPressed) {
  const struct {
    DialogKind kind;
    const wchar_t* title;
    DialogButtons buttons;
    int pressed;
    DialogAnswer answer;
  } cases[] = {
      {DialogKind::Information, L"Informare", DialogButtons::Ok, IDOK, DialogAnswer::Ok},
      {DialogKind::Information, L"Informare", DialogButtons::OkCancel, IDCANCEL, DialogAnswer::Cancel},
      {DialogKind::Warning, L"Avertizare", DialogButtons::YesNo, IDYES, DialogAnswer::Yes},
      {DialogKind::Warning, L"Avertizare", DialogButtons::YesNo, IDNO, DialogAnswer::No},
      {DialogKind::Error, L"Eroare", DialogButtons::RetryCancel, IDRETRY, DialogAnswer::Retry},
  };
  for (const auto& dialog : cases) {
    Presser presser(dialog.title, dialog.pressed);
    EXPECT_EQ(Current().GetDialogs().Ask(dialog.kind, "Ştergeţi tot?"_ro, dialog.buttons), dialog.answer);
    EXPECT_NE(presser.said.find(L"\u015Eterge\u0163i tot?"), std::wstring::npos);
  }
  EXPECT_THROW((void)Current().GetDialogs().Ask(DialogKind{3}, "x", DialogButtons::Ok), Error);
  EXPECT_THROW((void)Current().GetDialogs().Ask(DialogKind::Error, "x", DialogButtons{4}), Error);
}

TEST(Win32Application, ServesMessagesAndLeavesTheQuitToTheApplication) {
  Application& application = Current().GetApplication();
  EXPECT_TRUE(application.OnMainThread());
  bool onAnother = true;
  std::thread([&] { onAnother = application.OnMainThread(); }).join();
  EXPECT_FALSE(onAnother);

  const HWND window = CreateWindowExW(0, L"STATIC", L"principala", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 300, 200,
                                      nullptr, nullptr, nullptr, nullptr);
  const HWND owned = CreateWindowExW(0, L"STATIC", L"dialog", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 300, 200, window,
                                     nullptr, nullptr, nullptr);
  EXPECT_EQ(application.MainWindow(), reinterpret_cast<Handle>(window));
  PostMessageW(owned, WM_CLOSE, 0, 0);
  PostQuitMessage(7);
  application.ProcessMessages();
  EXPECT_EQ(IsWindow(owned), 0);
  MSG message;
  ASSERT_NE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE), 0);
  EXPECT_EQ(message.message, static_cast<UINT>(WM_QUIT));
  EXPECT_EQ(message.wParam, 7U);
  DestroyWindow(window);
  EXPECT_EQ(application.MainWindow(), 0U);
}

}  // namespace
}  // namespace kiv::host
