/// @file
/// The built-in host without windows, for servers and tests: a screen whose monitors are told to it, dialogs that
/// answer by a script, a clipboard of its own. Controls over it are in HeadlessControls.h.
///
/// A test or a server that wants other monitors or answers makes a headless::Host of its own and installs it.
#pragma once

#include <array>
#include <deque>
#include <functional>

#include "kivtools/Host.h"

namespace kiv::host::headless {

/// An application without windows. Its main thread is the one that loaded the library.
class KIV_API Application : public host::Application {
 public:
  [[nodiscard]] bool OnMainThread() const override;
  /// Calls what OnMessages has set.
  void ProcessMessages() override;
  [[nodiscard]] Handle MainWindow() const override { return 0; }

  /// Sets what each ProcessMessages does; nothing from the start.
  void OnMessages(std::function<void()> work) { work_ = std::move(work); }

 private:
  std::function<void()> work_;
};

/// A screen that is as one says. From the start: one monitor of 1920x1080 whose lowest 40 rows are taken, the mouse in
/// its left upper corner, 96 pixels per inch, a message font of -11.
class KIV_API Screen : public host::Screen {
 public:
  Screen();

  [[nodiscard]] std::vector<Monitor> Monitors() const override { return monitors_; }
  [[nodiscard]] Point MousePosition() const override { return mouse_; }
  [[nodiscard]] std::int32_t PixelsPerInch() const override { return pixelsPerInch_; }
  [[nodiscard]] std::int32_t MessageFontHeight() const override { return messageFontHeight_; }
  /// The only device is 0, the first monitor.
  [[nodiscard]] std::int32_t Capability(Handle device, DeviceCapability capability) const override;

  void SetMonitors(std::vector<Monitor> monitors) { monitors_ = std::move(monitors); }
  void SetMousePosition(Point position) { mouse_ = position; }
  void SetPixelsPerInch(std::int32_t pixelsPerInch) { pixelsPerInch_ = pixelsPerInch; }
  void SetMessageFontHeight(std::int32_t height) { messageFontHeight_ = height; }

 private:
  std::vector<Monitor> monitors_;
  Point mouse_;
  std::int32_t pixelsPerInch_ = 96;
  std::int32_t messageFontHeight_ = -11;
};

/// Dialogs that nobody sees: each must have been expected, in order, and gets the answer that was given with it.
///
///     dialogs.Expect({DialogKind::Warning, "Discheta contine date.", DialogButtons::YesNo}, DialogAnswer::Yes);
class KIV_API Dialogs : public host::Dialogs {
 public:
  struct Dialog {
    DialogKind kind;
    Text text;
    DialogButtons buttons;

    friend bool operator==(const Dialog&, const Dialog&) = default;
  };

  /// Throws Error, with the dialog and the one expected, for any but the next expected one: a program without windows
  /// must not wait for an answer that nobody can give. The expected one then stays expected.
  [[nodiscard]] DialogAnswer Ask(DialogKind kind, TextView text, DialogButtons buttons) override;

  /// Appends to the expected dialogs. Throws Error where the dialog has no button for the answer.
  void Expect(Dialog dialog, DialogAnswer answer);
  /// How many expected dialogs have not been asked for yet.
  [[nodiscard]] std::size_t Outstanding() const noexcept { return script_.size(); }

 private:
  struct Step {
    Dialog dialog;
    DialogAnswer answer;
  };
  std::deque<Step> script_;
};

/// A clipboard for this process alone: without a window system there is nobody else to give the text to.
class KIV_API Clipboard : public host::Clipboard {
 public:
  void SetText(TextView text) override { text_ = text; }
  [[nodiscard]] Text GetText() override { return text_; }

 private:
  Text text_;
};

/// The system colours by number, 0x00BBGGRR, as a new desktop of Windows 7 and later has them.
inline constexpr std::array<Colour, 31> kSystemColours = {
    0x00C8C8C8,  //  0 scroll bar
    0x00000000,  //  1 desktop
    0x00D1B499,  //  2 caption of the active window
    0x00DBCDBF,  //  3 caption of other windows
    0x00F0F0F0,  //  4 menu
    0x00FFFFFF,  //  5 background of windows
    0x00646464,  //  6 window frame
    0x00000000,  //  7 text in menus
    0x00000000,  //  8 text in windows
    0x00000000,  //  9 text in the active window's caption
    0x00B4B4B4,  // 10 border of the active window
    0x00FCF7F4,  // 11 border of other windows
    0x00ABABAB,  // 12 background behind documents
    0x00FF9933,  // 13 selected item
    0x00FFFFFF,  // 14 text of the selected item
    0x00F0F0F0,  // 15 face of buttons and dialogs
    0x00A0A0A0,  // 16 shadow of buttons
    0x006D6D6D,  // 17 grey text
    0x00000000,  // 18 text on buttons
    0x00544E43,  // 19 text in the captions of other windows
    0x00FFFFFF,  // 20 light edge of buttons
    0x00696969,  // 21 dark shadow of buttons
    0x00E3E3E3,  // 22 light on buttons
    0x00000000,  // 23 text of hints
    0x00E1FFFF,  // 24 background of hints
    0x00000000,  // 25 (no colour)
    0x00CC6600,  // 26 link
    0x00EAD1B9,  // 27 right end of the active caption
    0x00F2E4D7,  // 28 right end of other captions
    0x00FF9933,  // 29 selected menu item
    0x00F0F0F0,  // 30 menu bar
};

/// The colours of kSystemColours.
class KIV_API Colours : public host::Colours {
 public:
  [[nodiscard]] Colour SystemColour(std::uint8_t number) const override {
    return number < kSystemColours.size() ? kSystemColours[number] : 0;
  }
};

/// The host that gathers them. Example of a test:
///
///     headless::Host host;
///     host.GetScreen().SetMonitors({{{0, 0, 1024, 768}, {0, 0, 1024, 738}}});
///     host::Install(host);
class KIV_API Host : public host::Host {
 public:
  [[nodiscard]] Application& GetApplication() override { return application_; }
  [[nodiscard]] Screen& GetScreen() override { return screen_; }
  [[nodiscard]] Dialogs& GetDialogs() override { return dialogs_; }
  [[nodiscard]] Clipboard& GetClipboard() override { return clipboard_; }
  [[nodiscard]] Colours& GetColours() override { return colours_; }

 private:
  Application application_;
  Screen screen_;
  Dialogs dialogs_;
  Clipboard clipboard_;
  Colours colours_;
};

}  // namespace kiv::host::headless
