#pragma once

#include "kivtools/Host/Qt.h"

/// The services over what QApplication and the classes around it have.
namespace kiv::host::qt {

class Application : public host::Application {
 public:
  [[nodiscard]] bool OnMainThread() const override;
  void ProcessMessages() override;
  [[nodiscard]] Handle MainWindow() const override;
};

class Screen : public host::Screen {
 public:
  [[nodiscard]] std::vector<Monitor> Monitors() const override;
  [[nodiscard]] Point MousePosition() const override;
  [[nodiscard]] std::int32_t PixelsPerInch() const override;
  [[nodiscard]] std::int32_t MessageFontHeight() const override;
  [[nodiscard]] std::int32_t Capability(Handle device, DeviceCapability capability) const override;
};

/// Message boxes over the active window.
class Dialogs : public host::Dialogs {
 public:
  [[nodiscard]] DialogAnswer Ask(DialogKind kind, TextView text, DialogButtons buttons) override;
};

/// Qt does not tell whether another program holds the clipboard, so that nothing is thrown here.
class Clipboard : public host::Clipboard {
 public:
  void SetText(TextView text) override;
  [[nodiscard]] Text GetText() override;
};

/// Each system colour is the one of the palette that Qt draws the same thing with.
class Colours : public host::Colours {
 public:
  [[nodiscard]] Colour SystemColour(std::uint8_t number) const override;
};

struct Host::Services {
  Application application;
  Screen screen;
  Dialogs dialogs;
  Clipboard clipboard;
  Colours colours;
};

}  // namespace kiv::host::qt
