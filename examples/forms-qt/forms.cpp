// Forms of a small application over the widgets of Qt: an elastic toolbar on a gradient, a main form that is centred, a
// dialog in larger letters, and a label that shows how far a copy has come.
//
//   forms [WIDTH HEIGHT [PICTURE.png]]   the main form's inner size in pixels; with a file it draws its windows there,
//                                        prints the widths of the toolbar's sections and ends

#include <kivtools/Host/Qt.h>
#include <kivtools/Host/QtControls.h>
#include <kivtools/LargeFontScaler.h>
#include <kivtools/UPanelElastic.h>
#include <kivtools/WinUtil/Forms.h>

#include <QApplication>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QTimer>
#include <array>
#include <iostream>

#include "GradientPanel.h"

namespace {

namespace host = kiv::host;
namespace qt = host::qt;
using host::Alignment;

constexpr host::Anchors kBothSides{true, true, true, false};

/// A widget of the window's; Qt deletes it with its parent.
template <class Widget>
Widget& Made(QWidget& parent, const char* name, QRect bounds, const QString& text = {}) {
  auto* const widget = new Widget(&parent);
  widget->setObjectName(name);
  widget->setGeometry(bounds);
  if constexpr (requires { widget->setText(text); }) {
    widget->setText(text);
  }
  return *widget;
}

/// The toolbar's three sections: two buttons that keep their width, the client's name and the invoice's number.
class Toolbar {
 public:
  Toolbar(host::LayoutNode& form, QWidget& window)
      : support_(&form, Made<GradientPanel>(window, "pnlSus", {0, 0, 1, 44})),
        buttons_(&support_, Made<QWidget>(*support_.Widget(), "pnlButoane", {0, 0, 190, 44})),
        client_(&support_, Made<QWidget>(*support_.Widget(), "pnlClient", {200, 0, 240, 44})),
        number_(&support_, Made<QWidget>(*support_.Widget(), "pnlNumar", {500, 0, 120, 44})),
        clientEdit_(&client_,
                    Made<QLineEdit>(*client_.Widget(), "edtClient", {62, 10, 170, 24}, "S.C. EXEMPLU S.R.L.")),
        numberEdit_(&number_, Made<QLineEdit>(*number_.Widget(), "edtNumar", {8, 10, 104, 24}, "Factura 120")) {
    Made<QPushButton>(*buttons_.Widget(), "btnSalvare", {8, 9, 80, 26}, "Salvare");
    Made<QPushButton>(*buttons_.Widget(), "btnTiparire", {96, 9, 80, 26}, "Tipărire");
    Made<QLabel>(*client_.Widget(), "lblClient", {8, 13, 50, 18}, "Client:").setStyleSheet("color: white");
    support_.SetAlignment(Alignment::Top);
    for (qt::Panel* const section : Sections()) {
      section->SetAlignment(Alignment::Left);
    }
    clientEdit_.SetAnchors(kBothSides);
    numberEdit_.SetAnchors(kBothSides);
    manager_.Initializeaza(support_);
    manager_.Redimensioneaza();
  }

  [[nodiscard]] std::array<qt::Panel*, 3> Sections() { return {&buttons_, &client_, &number_}; }

 private:
  qt::Panel support_;
  qt::Panel buttons_;
  qt::Panel client_;
  qt::Panel number_;
  qt::Control clientEdit_;
  qt::Control numberEdit_;
  kiv::TManagerPanelElastic manager_;
};

/// A dialog whose sizes follow LargeFonts.txt beside the program, over the form below its toolbar.
class ScaledDialog {
 public:
  explicit ScaledDialog(QWidget& over)
      : dialog_(&over),
        form_(dialog_),
        text_(&form_, Made<QLabel>(dialog_, "lblIntrebare", {16, 16, 1, 1}, "Tipăresc factura 120?")),
        yes_(&form_, Made<QPushButton>(dialog_, "btnDa", {40, 56, 70, 26}, "Da")),
        no_(&form_, Made<QPushButton>(dialog_, "btnNu", {130, 56, 70, 26}, "Nu")) {
    dialog_.setWindowTitle("Dialog mărit");
    dialog_.setBackgroundRole(QPalette::Base);
    dialog_.setAutoFillBackground(true);
    dialog_.resize(240, 100);
    kiv::ScaleControl(form_);
    dialog_.move(over.pos() + QPoint(300, 90));
    dialog_.show();
  }

 private:
  QDialog dialog_;
  qt::Form form_;
  qt::Label text_;
  qt::Control yes_;
  qt::Control no_;
};

/// What the screen shows of the window, where that is, and how wide the sections are.
void Report(const QWidget& window, Toolbar& toolbar, const QString& picture) {
  const QRect place = window.frameGeometry();
  if (!window.screen()->grabWindow(0, place.x(), place.y(), place.width(), place.height()).save(picture)) {
    std::cout << "the picture cannot be written, ";
  }
  std::cout << "at " << place.x() << ", " << place.y();
  for (const qt::Panel* const section : toolbar.Sections()) {
    std::cout << ", " << section->Name() << ' ' << section->Width();
  }
  std::cout << std::endl;
}

int Run(const QStringList& arguments) {
  const bool sized = arguments.size() > 2;
  QWidget window;
  window.setObjectName("frmFactura");
  window.setWindowTitle("Factura");
  window.resize(sized ? arguments[1].toInt() : 640, sized ? arguments[2].toInt() : 240);
  qt::Form form(window);
  Toolbar toolbar(form, window);
  qt::Label progress(&form, Made<QLabel>(window, "lblProgres", {12, window.height() - 28, 1, 1}));
  progress.SetAnchors({true, false, false, true});
  progress.SetCaption("...\\Facturi\\2026\\noiembrie\\F120.xml");
  kiv::CentreazaForm(form, true);
  window.show();
  const ScaledDialog dialog(window);
  if (arguments.size() > 3) {
    constexpr int kPaintedAfterMilliseconds = 300;
    QTimer::singleShot(kPaintedAfterMilliseconds, [&] {
      Report(window, toolbar, arguments[3]);
      QCoreApplication::quit();
    });
  }
  return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  try {
    qt::Host host;
    host::Install(host);
    return Run(QApplication::arguments());
  } catch (const kiv::Error& error) {
    QMessageBox::critical(nullptr, "forms", error.what());
    return 1;
  }
}
