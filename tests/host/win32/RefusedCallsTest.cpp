#include <gtest/gtest.h>
#include <windows.h>

#include <functional>

#include "Expect.h"
#include "kivtools/Bitmap.h"
#include "kivtools/Host.h"
#include "kivtools/Host/Win32.h"
#include "kivtools/WinUtil/System.h"
#include "platform/FailingCalls.h"

namespace kiv {
namespace {

constexpr std::int32_t kNoMemory = ERROR_NOT_ENOUGH_MEMORY;

/// What the process holds of the system's drawing objects and windows.
DWORD Held() {
  return GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS) + GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS);
}

TEST(RefusedCalls, OfWindowsAndDrawingAreToldAndLeaveNothing) {
  const HWND text = CreateWindowExW(0, L"STATIC", L"cale", WS_POPUP, 0, 0, 50, 20, nullptr, nullptr, nullptr, nullptr);
  host::win32::Label label(nullptr, "lbl", reinterpret_cast<Handle>(text));
  const Bitmap bitmap(3, 2, PixelFormat::Rgb24);
  const Handle drawn = ToSystemBitmap(bitmap);
  const struct {
    const char* message;
    std::function<void()> operation;
  } cases[] = {
      {"Nu pot deschide clipboard-ul", [] { CopiazaTextInClipboard("altceva"); }},
      {"Nu pot deschide clipboard-ul", [] { static_cast<void>(host::Current().GetClipboard().GetText()); }},
      {"Nu pot masura textul", [&] { label.SetCaption("alta cale"); }},
      {"Nu pot mari fontul", [&] { label.Scale(3, 2); }},
      {"Nu pot afla rezolutia ecranului", [] { static_cast<void>(host::Current().GetScreen().PixelsPerInch()); }},
      {"ToSystemBitmap", [&] { DeleteObject(reinterpret_cast<HBITMAP>(ToSystemBitmap(bitmap))); }},
      {"FromSystemBitmap", [&] { static_cast<void>(FromSystemBitmap(drawn)); }},
  };
  for (const auto& [message, operation] : cases) {
    SCOPED_TRACE(message);
    const DWORD before = Held();
    {
      const FailingCalls fails(0, kNoMemory);
      ExpectError<OsError>(operation, Text(message) + ": " + platform::SystemText(kNoMemory));
      EXPECT_TRUE(fails.Failed());
    }
    EXPECT_EQ(Held(), before);
    EXPECT_NO_THROW(operation());
  }
  DeleteObject(reinterpret_cast<HBITMAP>(drawn));
  DestroyWindow(text);
}

TEST(RefusedCalls, OfTheClipboardLeaveWhatItHeld) {
  CopiazaTextInClipboard("dinainte");
  {
    const FailingCalls fails(0, kNoMemory);
    EXPECT_THROW(CopiazaTextInClipboard("altceva"), OsError);
  }
  EXPECT_EQ(host::Current().GetClipboard().GetText(), "dinainte");
}

}  // namespace
}  // namespace kiv
