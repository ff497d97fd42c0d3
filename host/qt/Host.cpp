#include <QApplication>
#include <QClipboard>
#include <QThread>
#include <QWindow>

#include "host/qt/Services.h"
#include "host/qt/Texts.h"

namespace kiv::host::qt {

bool Application::OnMainThread() const {
  const QCoreApplication* const application = QCoreApplication::instance();
  return application != nullptr && QThread::currentThread() == application->thread();
}

void Application::ProcessMessages() {
  QCoreApplication::processEvents();
}

Handle Application::MainWindow() const {
  for (QWindow* const window : QGuiApplication::topLevelWindows()) {
    if (window->isVisible() && window->type() == Qt::Window && window->transientParent() == nullptr) {
      return static_cast<Handle>(window->winId());
    }
  }
  return 0;
}

void Clipboard::SetText(TextView text) {
  QGuiApplication::clipboard()->setText(ToQt(text, DiacriticForm::Cedilla));
}

Text Clipboard::GetText() {
  return FromQt(QGuiApplication::clipboard()->text());
}

Host::Host() {
  if (qobject_cast<QApplication*>(QCoreApplication::instance()) == nullptr) {
    throw Error("qt::Host: nu exista inca un QApplication");
  }
  services_ = std::make_unique<Services>();
}

Host::~Host() = default;

host::Application& Host::GetApplication() {
  return services_->application;
}

host::Screen& Host::GetScreen() {
  return services_->screen;
}

host::Dialogs& Host::GetDialogs() {
  return services_->dialogs;
}

host::Clipboard& Host::GetClipboard() {
  return services_->clipboard;
}

host::Colours& Host::GetColours() {
  return services_->colours;
}

}  // namespace kiv::host::qt
