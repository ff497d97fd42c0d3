#pragma once

#include <QApplication>
#include <QElapsedTimer>
#include <QThread>

namespace kiv::host {

/// Serves the application's events until the condition holds; false where it does not within ten seconds.
template <class Condition>
bool Soon(Condition&& condition) {
  QElapsedTimer timer;
  timer.start();
  while (!condition()) {
    if (timer.elapsed() > 10'000) {
      return false;
    }
    QApplication::processEvents();
    QThread::msleep(1);
  }
  return true;
}

/// True on the screens of screens.json, else on those of the display.
inline bool OnScreensOfTheFile() {
  return QGuiApplication::platformName() == QStringLiteral("offscreen");
}

}  // namespace kiv::host
