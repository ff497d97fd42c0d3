/// Plain windows of the system for the example, made with a line each.
#pragma once

#include <kivtools/Bitmap.h>
#include <kivtools/Host/Win32.h>
#include <windows.h>

#include <string>

/// A control with its window, which goes with the form's.
template <class Control>
class Made : public Control {
 public:
  Made(kiv::host::LayoutNode* container, HWND parent, const char* name, const wchar_t* windowClass, const wchar_t* text,
       kiv::host::Rect bounds, DWORD style = 0)
      : Control(container, name,
                reinterpret_cast<kiv::Handle>(CreateWindowExW(0, windowClass, text, WS_CHILD | WS_VISIBLE | style,
                                                              bounds.left, bounds.top, bounds.Width(), bounds.Height(),
                                                              parent, nullptr, nullptr, nullptr))) {}

  [[nodiscard]] HWND Get() const { return reinterpret_cast<HWND>(this->NativeWindow()); }
};

/// The window class of panels that show a picture, which follows their size.
inline constexpr wchar_t kGradientPanel[] = L"KivGradientPanel";
/// The window class of forms and of panels in the face colour of buttons.
inline constexpr wchar_t kPlainPanel[] = L"KivPlainPanel";

/// Registers both; closing a form of the plain class ends the program.
void RegisterWindowClasses();
