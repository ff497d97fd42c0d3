#include "Windows.h"

#include <kivtools/BmpRoutines.h>

#include <cwchar>

namespace {

/// A gradient panel within another shows its part of that one's picture.
HWND PictureOwner(HWND window) {
  wchar_t name[64] = L"";
  GetClassNameW(GetParent(window), name, 64);
  return std::wcscmp(name, kGradientPanel) == 0 ? GetParent(window) : window;
}

/// The library's fill, from dark to light blue, row by row.
void PaintGradient(HWND window) {
  PAINTSTRUCT paint;
  const HDC device = BeginPaint(window, &paint);
  const HWND owner = PictureOwner(window);
  RECT area{};
  GetClientRect(owner, &area);
  POINT corner{};
  MapWindowPoints(window, owner, &corner, 1);
  const kiv::Bitmap fill = kiv::GenerateHorizFountainFill(area.right, area.bottom, 0x00A06020, 0x00F8E8D0);
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = fill.Width();
  info.bmiHeader.biHeight = 1;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 24;
  for (int row = 0; row < fill.Height(); ++row) {
    SetDIBitsToDevice(device, 0, row, static_cast<DWORD>(fill.Width()), 1, corner.x, 0, 0, 1, fill.ScanLine(row), &info,
                      DIB_RGB_COLORS);
  }
  EndPaint(window, &paint);
}

LRESULT CALLBACK GradientPanel(HWND window, UINT message, WPARAM wide, LPARAM large) {
  switch (message) {
    case WM_PAINT:
      PaintGradient(window);
      return 0;
    case WM_ERASEBKGND:
      return 1;
    case WM_CTLCOLORSTATIC:  // a text lies on the picture
      SetBkMode(reinterpret_cast<HDC>(wide), TRANSPARENT);
      SetTextColor(reinterpret_cast<HDC>(wide), 0x00FFFFFF);
      return reinterpret_cast<LRESULT>(GetStockObject(NULL_BRUSH));
    case WM_SIZE:
      RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN);
      return 0;
    default:
      return DefWindowProcW(window, message, wide, large);
  }
}

LRESULT CALLBACK PlainPanel(HWND window, UINT message, WPARAM wide, LPARAM large) {
  if (message == WM_CLOSE) {
    PostQuitMessage(0);
    return 0;
  }
  return DefWindowProcW(window, message, wide, large);
}

void Register(const wchar_t* name, WNDPROC procedure) {
  WNDCLASSW windowClass{};
  windowClass.style = CS_HREDRAW | CS_VREDRAW;
  windowClass.lpfnWndProc = procedure;
  windowClass.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));  // the arrow
  windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
  windowClass.lpszClassName = name;
  RegisterClassW(&windowClass);
}

}  // namespace

void RegisterWindowClasses() {
  Register(kGradientPanel, &GradientPanel);
  Register(kPlainPanel, &PlainPanel);
}
