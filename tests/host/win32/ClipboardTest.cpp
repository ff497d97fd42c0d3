#include <gtest/gtest.h>
#include <windows.h>

#include <chrono>
#include <string>
#include <thread>

#include "kivtools/Host.h"
#include "kivtools/WinUtil/System.h"

namespace kiv {
namespace {

using namespace literals;

/// The clipboard's wide text, by the system's own calls.
std::wstring SystemText() {
  std::wstring text;
  EXPECT_NE(OpenClipboard(nullptr), 0);
  if (const HANDLE memory = GetClipboardData(CF_UNICODETEXT)) {
    text = static_cast<const wchar_t*>(GlobalLock(memory));
    GlobalUnlock(memory);
  }
  CloseClipboard();
  return text;
}

TEST(Clipboard, HoldsTextForOtherPrograms) {
  CopiazaTextInClipboard("Şapte ţări, ăâîş ŞŢĂÂÎ: 10 €"_ro);
  EXPECT_EQ(SystemText(),
            L"\u015Eapte \u0163\u0103ri, \u0103\u00E2\u00EE\u015F \u015E\u0162\u0102\u00C2\u00CE: 10 \u20AC");
  EXPECT_EQ(host::Current().GetClipboard().GetText(), "Şapte ţări, ăâîş ŞŢĂÂÎ: 10 €"_ro);
  CopiazaTextInClipboard("");
  EXPECT_EQ(SystemText(), L"");
  const Text large(1'000'000, 'x');
  CopiazaTextInClipboard(large);
  EXPECT_EQ(host::Current().GetClipboard().GetText(), large);
}

TEST(Clipboard, WaitsForItAMomentAndThenSaysSo) {
  const auto hold = [](int milliseconds) {
    const HWND window = CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    ASSERT_NE(OpenClipboard(window), 0);
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    CloseClipboard();
    DestroyWindow(window);
  };
  for (const int milliseconds : {60, 1'500}) {
    std::thread holder(hold, milliseconds);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    if (milliseconds < 100) {
      EXPECT_NO_THROW(CopiazaTextInClipboard("dup\xE3"));
    } else {
      EXPECT_THROW(CopiazaTextInClipboard("niciodat\xE3"), OsError);
    }
    holder.join();
  }
  EXPECT_EQ(SystemText(), L"dup\u0103");
}

}  // namespace
}  // namespace kiv
