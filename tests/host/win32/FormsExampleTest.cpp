// The example as its users see it: a process of its own, whose windows are asked and resized from outside.
#include <gtest/gtest.h>
#include <windows.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace {

/// The example running; ended with this object.
class Running {
 public:
  Running() {
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    std::wstring command = L"\"" + std::filesystem::path(KIV_FORMS_EXAMPLE).wstring() + L"\" 640 240";
    EXPECT_NE(
        CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process_), 0);
  }
  ~Running() {
    TerminateProcess(process_.hProcess, 0);
    CloseHandle(process_.hProcess);
    CloseHandle(process_.hThread);
  }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

 private:
  PROCESS_INFORMATION process_{};
};

bool Soon(const std::function<bool()>& condition) {
  for (int attempt = 0; attempt < 1'000 && !condition(); ++attempt) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return condition();
}

HWND Shown(const wchar_t* title) {
  HWND found = nullptr;
  Soon([&] {
    found = FindWindowW(nullptr, title);
    return found != nullptr && IsWindowVisible(found) != 0;
  });
  return found;
}

struct Search {
  const wchar_t* text;
  HWND found;
};

BOOL CALLBACK IsWanted(HWND child, LPARAM argument) {
  auto& search = *reinterpret_cast<Search*>(argument);
  wchar_t shown[128] = L"";
  SendMessageW(child, WM_GETTEXT, 128, reinterpret_cast<LPARAM>(shown));  // an edit tells its text to no other process
  if (std::wstring(shown) == search.text) {
    search.found = child;
  }
  return search.found == nullptr ? TRUE : FALSE;
}

HWND Inside(HWND form, const wchar_t* text) {
  Search search{text, nullptr};
  EnumChildWindows(form, &IsWanted, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

SIZE SizeOf(HWND window) {
  RECT rect{};
  GetWindowRect(window, &rect);
  return {rect.right - rect.left, rect.bottom - rect.top};
}

SIZE InnerSizeOf(HWND window) {
  RECT rect{};
  GetClientRect(window, &rect);
  return {rect.right, rect.bottom};
}

TEST(FormsExample, DividesItsToolbarAndIsCentredAndScaled) {
  std::ofstream(std::filesystem::path(KIV_FORMS_EXAMPLE).parent_path() / "LargeFonts.txt") << "5:4\n";
  const Running running;
  const HWND form = Shown(L"Factura");
  const HWND dialog = Shown(L"Dialog marit");
  ASSERT_NE(form, nullptr);
  ASSERT_NE(dialog, nullptr);

  RECT work{};
  SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
  RECT place{};
  GetWindowRect(form, &place);
  EXPECT_EQ(place.left, work.left + (work.right - work.left - SizeOf(form).cx) / 2);
  EXPECT_EQ(place.top, work.top + (work.bottom - work.top - SizeOf(form).cy) / 2);

  const auto widths = [form] {
    return std::vector<LONG>{SizeOf(Inside(form, L"Butoane")).cx, SizeOf(Inside(form, L"Client")).cx,
                             SizeOf(Inside(form, L"Numar")).cx, SizeOf(Inside(form, L"S.C. EXEMPLU S.R.L.")).cx};
  };
  // 190 fixed, at least 62 for the client's label; the rest is shared 240 to 120.
  EXPECT_EQ(InnerSizeOf(form).cx, 640);
  EXPECT_EQ(widths(), (std::vector<LONG>{190, 62 + 258, 129, 170 + 80}));
  const LONG frame = SizeOf(form).cx - 640;
  SetWindowPos(form, nullptr, 20, 20, 1'000 + frame, SizeOf(form).cy, SWP_NOZORDER);
  EXPECT_TRUE(Soon([&] { return InnerSizeOf(form).cx == 1'000; }));
  EXPECT_EQ(widths(), (std::vector<LONG>{190, 62 + 498, 249, 170 + 320}));

  EXPECT_EQ(InnerSizeOf(dialog).cx, 300);
  EXPECT_EQ(InnerSizeOf(dialog).cy, 125);
  EXPECT_EQ(SizeOf(Inside(dialog, L"Da")).cx, 88);
  EXPECT_EQ(SizeOf(Inside(dialog, L"Da")).cy, 33);
  // The label has grown with its letters, not with its box.
  const SIZE text = SizeOf(Inside(dialog, L"Tiparesc factura 120?"));
  EXPECT_GT(text.cx, 100);
  EXPECT_GT(text.cy, 16);
  EXPECT_GT(SizeOf(Inside(form, L"...\\Facturi\\2026\\noiembrie\\F120.xml")).cx, 150);
}

}  // namespace
