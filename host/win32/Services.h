#pragma once

#include "kivtools/Host.h"

/// The services over the system's own windows.
namespace kiv::host::win32 {

class Application : public host::Application {
 public:
  [[nodiscard]] bool OnMainThread() const override;
  void ProcessMessages() override;
  /// The first visible window with a frame that the main thread has made and that belongs to no other window.
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

/// The system's message box over the active window, titled as that is.
class Dialogs : public host::Dialogs {
 public:
  [[nodiscard]] DialogAnswer Ask(DialogKind kind, TextView text, DialogButtons buttons) override;
};

class Clipboard : public host::Clipboard {
 public:
  void SetText(TextView text) override;
  [[nodiscard]] Text GetText() override;
};

class Colours : public host::Colours {
 public:
  [[nodiscard]] Colour SystemColour(std::uint8_t number) const override;
};

}  // namespace kiv::host::win32
