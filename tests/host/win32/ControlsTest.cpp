#include <gtest/gtest.h>
#include <windows.h>

#include <chrono>
#include <string>
#include <thread>

#include "Expect.h"
#include "kivtools/Host.h"
#include "kivtools/Host/Win32.h"
#include "kivtools/UPanelElastic.h"
#include "kivtools/WinUtil/FileTrees.h"
#include "kivtools/WinUtil/Forms.h"
#include "platform/Paths.h"
#include "platform/TestFolder.h"

namespace kiv::host {
namespace {

using namespace literals;

/// A real window, destroyed with this object.
class NewWindow {
 public:
  NewWindow(HWND parent, const wchar_t* windowClass, const wchar_t* text, Rect bounds, DWORD style = WS_VISIBLE)
      : window_(CreateWindowExW(0, windowClass, text, style | (parent != nullptr ? WS_CHILD : WS_OVERLAPPEDWINDOW),
                                bounds.left, bounds.top, bounds.Width(), bounds.Height(), parent, nullptr, nullptr,
                                nullptr)) {}
  ~NewWindow() { DestroyWindow(window_); }
  NewWindow(const NewWindow&) = delete;
  NewWindow& operator=(const NewWindow&) = delete;

  [[nodiscard]] HWND Get() const { return window_; }
  [[nodiscard]] Handle Number() const { return reinterpret_cast<Handle>(window_); }
  [[nodiscard]] std::int32_t Width() const {
    RECT rect{};
    GetWindowRect(window_, &rect);
    return rect.right - rect.left;
  }

 private:
  HWND window_;
};

/// What the text takes in the window's font, by the system's own measure.
SIZE Extent(HWND window, const std::wstring& text) {
  const HDC device = GetDC(window);
  const auto font = reinterpret_cast<HGDIOBJ>(SendMessageW(window, WM_GETFONT, 0, 0));
  const HGDIOBJ before = font != nullptr ? SelectObject(device, font) : nullptr;
  SIZE extent{};
  GetTextExtentPoint32W(device, text.data(), static_cast<int>(text.size()), &extent);
  if (before != nullptr) {
    SelectObject(device, before);
  }
  ReleaseDC(window, device);
  return extent;
}

TEST(Win32Controls, ElasticSectionsAreRealWindows) {
  const NewWindow formWindow(nullptr, L"STATIC", L"f", Rect::At(0, 0, 700, 300));
  const NewWindow supportWindow(formWindow.Get(), L"STATIC", L"", Rect::At(0, 0, 1, 40));
  const NewWindow a(supportWindow.Get(), L"STATIC", L"", Rect::At(0, 0, 100, 1));
  const NewWindow b(supportWindow.Get(), L"STATIC", L"", Rect::At(200, 0, 200, 1));
  const NewWindow c(supportWindow.Get(), L"STATIC", L"", Rect::At(500, 0, 100, 1));
  const NewWindow editB(b.Get(), L"EDIT", L"", Rect::At(5, 5, 190, 20));
  const NewWindow buttonB(b.Get(), L"BUTTON", L"", Rect::At(6, 5, 40, 20));
  const NewWindow editC(c.Get(), L"EDIT", L"", Rect::At(5, 5, 90, 20));
  win32::Form form("frm", formWindow.Number());
  win32::Panel support(&form, "pnlSus", supportWindow.Number());
  win32::Panel panelA(&support, "A", a.Number());
  win32::Panel panelB(&support, "B", b.Number());
  win32::Panel panelC(&support, "C", c.Number());
  win32::Control stretchedB(&panelB, "editB", editB.Number());
  win32::Control stretchedC(&panelC, "editC", editC.Number());
  stretchedB.SetAnchors({true, true, true, false});
  stretchedC.SetAnchors({true, true, true, false});
  support.SetAlignment(Alignment::Top);
  for (win32::Panel* const section : {&panelA, &panelB, &panelC}) {
    section->SetAlignment(Alignment::Left);
  }
  TManagerPanelElastic manager;
  manager.Initializeaza(support);
  ASSERT_EQ(manager.Count(), 3);
  EXPECT_EQ(manager.Sectiune(1).LatimeMinima, 50);  // the button, which has no control of its own
  EXPECT_EQ(manager.Sectiune(2).LatimeMinima, 0);
  EXPECT_TRUE(support.HasResizeHandler());

  RECT frame{0, 0, 600, 200};
  AdjustWindowRect(&frame, WS_OVERLAPPEDWINDOW, FALSE);
  MoveWindow(formWindow.Get(), 10, 10, frame.right - frame.left, frame.bottom - frame.top, TRUE);  // as the user does
  EXPECT_EQ(support.ClientWidth(), 600);
  EXPECT_EQ(a.Width(), 100);
  EXPECT_EQ(b.Width(), 50 + 200 * 450 / 300);
  EXPECT_EQ(c.Width(), 100 * 450 / 300);
  EXPECT_EQ(panelC.Left(), 450);
  EXPECT_EQ(editB.Width(), 340);
  ShowWindow(c.Get(), SW_HIDE);
  EXPECT_FALSE(panelC.Visible());
  manager.Redimensioneaza();
  EXPECT_EQ(b.Width(), 50 + 450);
  EXPECT_TRUE(form.IsContainer());
  EXPECT_EQ(stretchedB.ClassName(), "Edit");

  const NewWindow stray(supportWindow.Get(), L"BUTTON", L"Salveaz\u0103", Rect::At(0, 0, 9, 9));
  TManagerPanelElastic refused;
  ExpectError<Error>([&] { refused.Initializeaza(support); },
                     "Panoul de suport - pnlSus:TPanel trebuie sa contina exclusiv controale de tip TCustomPanel; "
                     "Controlul Salvează:Button *NU* are ce cauta acolo!"_ro);
}

TEST(Win32Controls, HandlersFailWhereTheResizeWasAsked) {
  const NewWindow window(nullptr, L"STATIC", L"f", Rect::At(0, 0, 300, 300), 0);
  win32::Panel panel(nullptr, "p", window.Number());
  panel.SetResizeHandler([](Object*) { throw DivisionByZero("din handler"); });
  ExpectError<DivisionByZero>([&] { panel.SetBounds(Rect::At(0, 0, 400, 300)); }, "din handler");
  EXPECT_EQ(window.Width(), 400);
  // Where the user has resized it, nobody could catch it.
  std::thread presser([] {
    HWND box = nullptr;
    for (int i = 0; i < 1'000 && (box == nullptr || GetDlgItem(box, IDOK) == nullptr); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
      box = FindWindowW(L"#32770", L"Eroare");
    }
    PostMessageW(box, WM_COMMAND, IDOK, 0);
  });
  MoveWindow(window.Get(), 0, 0, 500, 300, FALSE);
  presser.join();
  panel.SetResizeHandler({});
  panel.SetBounds(Rect::At(0, 0, 200, 200));
  EXPECT_EQ(window.Width(), 200);
}

TEST(Win32Controls, LabelsAreAsWideAsTheirTexts) {
  const NewWindow form(nullptr, L"STATIC", L"f", Rect::At(0, 0, 500, 300));
  const NewWindow text(form.Get(), L"STATIC", L"x", Rect::At(10, 20, 1, 1));
  win32::Label label(nullptr, "lbl", text.Number());
  const struct {
    Text caption;
    std::wstring shown;
  } cases[] = {{"C:\\Date\\firmă & fiu\\a.dbf"_ro, L"C:\\Date\\firm\u0103 & fiu\\a.dbf"}, {"", L""}, {"x", L"x"}};
  for (const auto& [caption, shown] : cases) {
    label.SetCaption(caption);
    EXPECT_EQ(label.Width(), shown.empty() ? 0 : Extent(text.Get(), shown).cx);
    EXPECT_EQ(label.Height(), Extent(text.Get(), L"x").cy);
    EXPECT_EQ(label.Left(), 10);
  }
  label.SetCaption("C:\\Date\\firmă"_ro);
  EXPECT_EQ(label.Caption(), "C:\\Date\\firmă"_ro);
  label.Repaint();
  EXPECT_EQ(GetUpdateRect(text.Get(), nullptr, FALSE), 0);
  const std::int32_t before = label.Height();
  label.Scale(2, 1);
  EXPECT_GT(label.Height(), before * 3 / 2);
  EXPECT_EQ(label.Width(), Extent(text.Get(), L"C:\\Date\\firm\u0103").cx);
}

TEST(Win32Controls, LabelsShowAsMuchOfAPathAsTheirFontLets) {
  const TestFolder folder;
  const std::filesystem::path deep = folder / "sursa" / "un folder cu nume destul de lung" / "al doilea" / "al treilea";
  std::filesystem::create_directories(deep);
  WriteWhole(deep / "firme si parteneri.dbf", "x");
  const NewWindow form(nullptr, L"STATIC", L"f", Rect::At(0, 0, 900, 300));
  const NewWindow text(form.Get(), L"STATIC", L"", Rect::At(10, 20, 1, 1));
  const auto width = [&](const std::wstring& caption) { return Extent(text.Get(), caption).cx; };
  win32::Label label(nullptr, "lblFisier", text.Number());
  RecursiveCopyWithExt(platform::TextFromPath(folder / "sursa"), platform::TextFromPath(folder / "copie"), {"dbf"},
                       label, 1000);
  constexpr LONG kMost = 350;  // of sub-folders, whatever was asked for the first one
  const std::wstring whole = (deep / "firme si parteneri.dbf").native();
  ASSERT_GT(width(whole), kMost) << "or nothing has to be cut";
  // By the system's own measure: one folder more is never shown, so that the last one that is fits with room to spare.
  std::wstring expected;
  std::wstring next = L"firme si parteneri.dbf";
  for (std::size_t at = whole.size() - next.size(); width(next) < kMost && at > 0;) {
    expected = next;
    const std::size_t above = whole.rfind(L'\\', at - 2);
    at = above == std::wstring::npos ? 0 : above + 1;
    next = L"...\\" + whole.substr(at);
  }
  EXPECT_EQ(label.Caption(), platform::TextFromPath(expected));
  EXPECT_NE(expected, L"");
  EXPECT_EQ(label.Width(), width(expected));
  EXPECT_LE(label.Width(), kMost);
}

TEST(Win32Controls, WindowsMayGoFirstAndBeWatchedOnce) {
  auto window = std::make_unique<NewWindow>(nullptr, L"STATIC", L"f", Rect::At(0, 0, 300, 300));
  auto panel = std::make_unique<win32::Panel>(nullptr, "p", window->Number());
  EXPECT_THROW(win32::Panel(nullptr, "q", window->Number()), Error);
  panel.reset();
  panel = std::make_unique<win32::Panel>(nullptr, "p", window->Number());  // free again
  win32::Control inside(panel.get(), "i", NewWindow(window->Get(), L"EDIT", L"", {}).Number());
  EXPECT_EQ(inside.NativeWindow(), 0U);
  window.reset();
  EXPECT_EQ(panel->NativeWindow(), 0U);
  EXPECT_EQ(panel->Bounds(), Rect());
  panel->SetBounds(Rect::At(1, 2, 3, 4));
  inside.ScaleBy(5, 4);
  EXPECT_TRUE(panel->Children().empty());
  EXPECT_FALSE(panel->Visible());
  for (const Handle none : {Handle{0}, Handle{12345}}) {
    EXPECT_THROW(win32::Control(nullptr, "c", none), Error);
  }
  bool refused = false;
  const NewWindow mine(nullptr, L"STATIC", L"f", {});
  std::thread([&] {
    try {
      const win32::Control control(nullptr, "c", mine.Number());
    } catch (const Error&) {
      refused = true;
    }
  }).join();
  EXPECT_TRUE(refused);
}

TEST(Win32Controls, FormsAreMaximisedOnceTheyAreShown) {
  struct Upright : Host {
    struct OneMonitor : Screen {
      [[nodiscard]] std::vector<Monitor> Monitors() const override { return {{{0, 0, 600, 800}, {0, 0, 600, 770}}}; }
      [[nodiscard]] Point MousePosition() const override { return {1, 1}; }
      [[nodiscard]] std::int32_t PixelsPerInch() const override { return 96; }
      [[nodiscard]] std::int32_t MessageFontHeight() const override { return 0; }
      [[nodiscard]] std::int32_t Capability(Handle, DeviceCapability) const override { return 0; }
    };
    [[nodiscard]] Screen& GetScreen() override { return screen; }
    OneMonitor screen;
  } upright;
  Install(upright);
  const NewWindow window(nullptr, L"STATIC", L"f", Rect::At(0, 0, 700, 900), 0);
  win32::Form form("frm", window.Number());
  CentreazaForm(form, true);
  EXPECT_EQ(form.Bounds(), Rect::At(15, 15, 570, 740));
  ShowWindow(window.Get(), SW_SHOW);
  for (int i = 0; i < 500 && IsZoomed(window.Get()) == 0; ++i) {
    Current().GetApplication().ProcessMessages();
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  EXPECT_NE(IsZoomed(window.Get()), 0);
}

}  // namespace
}  // namespace kiv::host
