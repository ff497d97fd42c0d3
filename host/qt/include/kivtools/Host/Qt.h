/// @file
/// The host of applications that are written with Qt: its screens, message boxes, clipboard, palette and event loop.
/// Controls over its widgets are in QtControls.h. Both belong to a library of their own, `KivToolsRePack::QtHost`.
#pragma once

#include <memory>

#include "kivtools/Host.h"

namespace kiv::host::qt {

/// Lends the library what the application's QApplication has. Made after it and ended before it, on the main thread:
///
///     QApplication application(argc, argv);
///     kiv::host::qt::Host host;
///     kiv::host::Install(host);
///
/// Sizes and places are those of Qt itself, logical pixels: on a screen that shows everything twice as large they are
/// half as many, and PixelsPerInch() stays 96.
///
/// A handle of a device, for Screen::Capability, is the number of a `QPaintDevice*` that lives: of a widget, which
/// stands for the screen that it is on, of a printer or of a picture. MainWindow() is the first window that the
/// application has made and shows, dialogs and pop-ups apart.
class Host : public host::Host {
 public:
  /// Throws Error where there is no QApplication yet.
  Host();
  ~Host() override;

  [[nodiscard]] Application& GetApplication() override;
  [[nodiscard]] Screen& GetScreen() override;
  [[nodiscard]] Dialogs& GetDialogs() override;
  [[nodiscard]] Clipboard& GetClipboard() override;
  [[nodiscard]] Colours& GetColours() override;

 private:
  struct Services;
  std::unique_ptr<Services> services_;
};

}  // namespace kiv::host::qt
