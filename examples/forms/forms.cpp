// Forms of a small application over plain windows: an elastic toolbar on a gradient, a main form that is centred, a
// dialog in larger letters, and a label that shows how far a copy has come.
//
//   forms [WIDTH HEIGHT]     the main form's inner size in pixels; closing a window ends the program

#include <kivtools/Host.h>
#include <kivtools/LargeFontScaler.h>
#include <kivtools/UPanelElastic.h>
#include <kivtools/WinUtil/Forms.h>

#include <cstdlib>

#include "Windows.h"

namespace {

namespace host = kiv::host;
using host::Alignment;
using host::Rect;
namespace win32 = host::win32;

constexpr host::Anchors kBothSides{true, true, true, false};
constexpr DWORD kForm = WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN;

kiv::Handle NewForm(const wchar_t* title, int width, int height) {
  RECT outer{0, 0, width, height};
  AdjustWindowRect(&outer, kForm, FALSE);
  return reinterpret_cast<kiv::Handle>(CreateWindowExW(0, kPlainPanel, title, kForm, 0, 0, outer.right - outer.left,
                                                       outer.bottom - outer.top, nullptr, nullptr, nullptr, nullptr));
}

/// The toolbar's three sections: two buttons that keep their width, the client's name and the invoice's number.
class Toolbar {
 public:
  Toolbar(host::LayoutNode& form, HWND formWindow)
      : support_(&form, formWindow, "pnlSus", kGradientPanel, L"", Rect::At(0, 0, 1, 44)),
        buttons_(&support_, support_.Get(), "pnlButoane", kGradientPanel, L"Butoane", Rect::At(0, 0, 190, 44)),
        client_(&support_, support_.Get(), "pnlClient", kGradientPanel, L"Client", Rect::At(200, 0, 240, 44)),
        number_(&support_, support_.Get(), "pnlNumar", kGradientPanel, L"Numar", Rect::At(500, 0, 120, 44)),
        save_(&buttons_, buttons_.Get(), "btnSalvare", L"BUTTON", L"Salvare", Rect::At(8, 9, 80, 26)),
        print_(&buttons_, buttons_.Get(), "btnTiparire", L"BUTTON", L"Tiparire", Rect::At(96, 9, 80, 26)),
        clientLabel_(&client_, client_.Get(), "lblClient", L"STATIC", L"Client:", Rect::At(8, 13, 50, 18)),
        clientEdit_(&client_, client_.Get(), "edtClient", L"EDIT", L"S.C. EXEMPLU S.R.L.", Rect::At(62, 10, 170, 24),
                    WS_BORDER),
        numberEdit_(&number_, number_.Get(), "edtNumar", L"EDIT", L"Factura 120", Rect::At(8, 10, 104, 24), WS_BORDER) {
    support_.SetAlignment(Alignment::Top);
    for (win32::Panel* const section : {static_cast<win32::Panel*>(&buttons_), static_cast<win32::Panel*>(&client_),
                                        static_cast<win32::Panel*>(&number_)}) {
      section->SetAlignment(Alignment::Left);
    }
    clientEdit_.SetAnchors(kBothSides);
    numberEdit_.SetAnchors(kBothSides);
    manager_.Initializeaza(support_);
    manager_.Redimensioneaza();
  }

 private:
  Made<win32::Panel> support_;
  Made<win32::Panel> buttons_;
  Made<win32::Panel> client_;
  Made<win32::Panel> number_;
  Made<win32::Control> save_;
  Made<win32::Control> print_;
  Made<win32::Control> clientLabel_;
  Made<win32::Control> clientEdit_;
  Made<win32::Control> numberEdit_;
  kiv::TManagerPanelElastic manager_;
};

/// A dialog whose sizes follow LargeFonts.txt beside the program, over the form below its toolbar.
class ScaledDialog {
 public:
  explicit ScaledDialog(const host::Form& over)
      : form_("frmDialog", NewForm(L"Dialog marit", 240, 100)),
        text_(&form_, Window(), "lblIntrebare", L"STATIC", L"Tiparesc factura 120?", Rect::At(16, 16, 1, 1)),
        yes_(&form_, Window(), "btnDa", L"BUTTON", L"Da", Rect::At(40, 56, 70, 26)),
        no_(&form_, Window(), "btnNu", L"BUTTON", L"Nu", Rect::At(130, 56, 70, 26)) {
    kiv::ScaleControl(form_);
    const Rect now = form_.Bounds();
    form_.SetBounds(Rect::At(over.Left() + 300, over.Top() + 90, now.Width(), now.Height()));
    ShowWindow(Window(), SW_SHOW);
  }

 private:
  [[nodiscard]] HWND Window() const { return reinterpret_cast<HWND>(form_.NativeWindow()); }

  win32::Form form_;
  Made<win32::Label> text_;
  Made<win32::Control> yes_;
  Made<win32::Control> no_;
};

int Run(int width, int height) {
  RegisterWindowClasses();
  win32::Form form("frmFactura", NewForm(L"Factura", width, height));
  const HWND window = reinterpret_cast<HWND>(form.NativeWindow());
  const Toolbar toolbar(form, window);
  Made<win32::Label> progress(&form, window, "lblProgres", L"STATIC", L"", Rect::At(12, height - 28, 1, 1));
  progress.SetAnchors({true, false, false, true});
  progress.SetCaption("...\\Facturi\\2026\\noiembrie\\F120.xml");
  kiv::CentreazaForm(form, true);
  ShowWindow(window, SW_SHOW);
  const ScaledDialog dialog(form);

  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  DestroyWindow(window);
  return static_cast<int>(message.wParam);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc > 2 ? std::atoi(argv[1]) : 640, argc > 2 ? std::atoi(argv[2]) : 240);
  } catch (const kiv::Error& error) {
    MessageBoxA(nullptr, error.what(), "forms", MB_ICONERROR);
    return 1;
  }
}
