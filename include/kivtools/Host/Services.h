/// @file
/// The services that the library asks of the application's framework. Each is a small abstract class; class Host
/// gathers them.
#pragma once

#include <vector>

#include "kivtools/Host/Geometry.h"
#include "kivtools/Types.h"

namespace kiv::host {

/// The application at work.
class KIV_API Application {
 public:
  virtual ~Application() = default;
  /// True on the thread that serves the application's windows. May be called from any thread.
  [[nodiscard]] virtual bool OnMainThread() const = 0;
  /// Serves what waits for the application's windows (painting, clicks, timers) and returns when nothing does. Called
  /// on the main thread only.
  virtual void ProcessMessages() = 0;
  /// The window of the application's main form, 0 where it has none.
  [[nodiscard]] virtual Handle MainWindow() const = 0;
};

/// What a device for drawing can say of itself. The numbers are those of the system's own query.
enum class DeviceCapability : std::int32_t {
  HorizontalSize = 4,              ///< width in millimetres
  VerticalSize = 6,                ///< height in millimetres
  HorizontalResolution = 8,        ///< width in pixels
  VerticalResolution = 10,         ///< height in pixels
  PhysicalWidth = 110,             ///< width of a printer's sheet in device units, 0 for a screen
  PhysicalHeight = 111,            ///< its height
  PhysicalOffsetHorizontal = 112,  ///< left margin that the printer leaves free, in device units
  PhysicalOffsetVertical = 113     ///< upper margin
};

/// The screen and what is known about its sizes.
class KIV_API Screen {
 public:
  virtual ~Screen() = default;
  /// The monitors, the main one first.
  [[nodiscard]] virtual std::vector<Monitor> Monitors() const = 0;
  /// Where the mouse pointer is.
  [[nodiscard]] virtual Point MousePosition() const = 0;
  /// Pixels in an inch of the screen. Example: 96, or 120 where everything is shown a quarter larger.
  [[nodiscard]] virtual std::int32_t PixelsPerInch() const = 0;
  /// The height of the font in which the system writes messages: negative for the height of the letters, positive for
  /// that of the whole line. Example: -11.
  [[nodiscard]] virtual std::int32_t MessageFontHeight() const = 0;
  /// A capability of a device context; 0 where the device does not know it or is none.
  [[nodiscard]] virtual std::int32_t Capability(Handle device, DeviceCapability capability) const = 0;
};

/// What a message dialog is about.
enum class DialogKind : std::int32_t { Information = 0, Warning = 1, Error = 2 };
/// The buttons of a message dialog.
enum class DialogButtons : std::int32_t { Ok = 0, OkCancel = 1, YesNo = 2, RetryCancel = 3 };
/// The button that the user pressed. Closing the dialog is Cancel where it has that button, else Ok or No.
enum class DialogAnswer : std::int32_t { Ok = 0, Cancel = 1, Yes = 2, No = 3, Retry = 4 };

/// Message dialogs.
class KIV_API Dialogs {
 public:
  virtual ~Dialogs() = default;
  /// Shows a message and waits for the answer. Line breaks in the text are CR LF.
  ///
  ///     dialogs.Ask(DialogKind::Warning, "Discheta contine date.", DialogButtons::YesNo) == DialogAnswer::Yes
  [[nodiscard]] virtual DialogAnswer Ask(DialogKind kind, TextView text, DialogButtons buttons) = 0;
};

/// The clipboard, as text.
class KIV_API Clipboard {
 public:
  virtual ~Clipboard() = default;
  /// Replaces the clipboard's content by a text. Throws OsError where the clipboard cannot be opened.
  virtual void SetText(TextView text) = 0;
  /// The clipboard's text, empty where it holds none; letters that Windows-1250 lacks are "?". Throws like SetText.
  [[nodiscard]] virtual Text GetText() = 0;
};

/// The colours of the user's desktop.
class KIV_API Colours {
 public:
  virtual ~Colours() = default;
  /// Red, green and blue (0x00BBGGRR) of the system colour with that number, black for a number that is none. The
  /// numbers are those of Windows. Example: number 5, the background of windows, is 0xFFFFFF on most desktops.
  [[nodiscard]] virtual Colour SystemColour(std::uint8_t number) const = 0;

  /// Any colour as red, green and blue: one with a top byte names the system colour whose number is in its lowest byte.
  /// Examples: 0x80000005 and 0xFF000005 are SystemColour(5); 0x00123456 is itself.
  [[nodiscard]] Colour Resolve(Colour colour) const {
    return colour <= 0x00FFFFFF ? colour : SystemColour(static_cast<std::uint8_t>(colour & 0xFF));
  }
};

}  // namespace kiv::host
