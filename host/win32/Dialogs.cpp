#include <windows.h>

#include "host/win32/Services.h"
#include "host/win32/WideTexts.h"
#include "platform/SystemError.h"

namespace kiv::host::win32 {
namespace {

struct Appearance {
  UINT icon;
  const wchar_t* title;
};

Appearance AppearanceOf(DialogKind kind) {
  switch (kind) {
    case DialogKind::Information:
      return {MB_ICONINFORMATION, L"Informare"};
    case DialogKind::Warning:
      return {MB_ICONWARNING, L"Avertizare"};
    case DialogKind::Error:
      return {MB_ICONERROR, L"Eroare"};
  }
  throw Error("Tip de dialog necunoscut: " + std::to_string(static_cast<std::int32_t>(kind)));
}

UINT SystemButtons(DialogButtons buttons) {
  switch (buttons) {
    case DialogButtons::Ok:
      return MB_OK;
    case DialogButtons::OkCancel:
      return MB_OKCANCEL;
    case DialogButtons::YesNo:
      return MB_YESNO;
    case DialogButtons::RetryCancel:
      return MB_RETRYCANCEL;
  }
  throw Error("Butoane de dialog necunoscute: " + std::to_string(static_cast<std::int32_t>(buttons)));
}

}  // namespace

DialogAnswer Dialogs::Ask(DialogKind kind, TextView text, DialogButtons buttons) {
  const Appearance appearance = AppearanceOf(kind);
  const UINT flags = appearance.icon | SystemButtons(buttons) | MB_TASKMODAL;
  const std::wstring wide = Wide(text);
  const int pressed = MessageBoxW(GetActiveWindow(), wide.c_str(), appearance.title, flags);
  switch (pressed) {
    case IDOK:
      return DialogAnswer::Ok;
    case IDCANCEL:
      return DialogAnswer::Cancel;
    case IDYES:
      return DialogAnswer::Yes;
    case IDNO:
      return DialogAnswer::No;
    case IDRETRY:
      return DialogAnswer::Retry;
    default:
      platform::LastStatus().Throw("Nu pot arata dialogul \"" + Text(text) + "\"");
  }
}

}  // namespace kiv::host::win32
