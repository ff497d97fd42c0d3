/// @file
/// The forms, panels and labels of an application, as the library sees them. The application's framework adapts its own
/// controls by deriving from these classes; Headless.h and, on Windows, Win32.h have ready ones.
///
/// Everything but Window is called on the application's main thread.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "kivtools/Host/Component.h"
#include "kivtools/Host/Geometry.h"

namespace kiv::host {

/// How a control fills its container.
enum class Alignment : std::int32_t {
  None = 0,    ///< it lies where it was put
  Top = 1,     ///< along the upper edge
  Bottom = 2,  ///< along the lower edge
  Left = 3,    ///< along the left edge
  Right = 4,   ///< along the right edge
  Client = 5,  ///< all that the others leave
  Custom = 6   ///< by a rule of the framework or the application
};

/// The edges of the container to which a control keeps its distance when the container is resized. Anchored to both
/// sides it grows and shrinks.
struct Anchors {
  bool left = true;
  bool top = true;
  bool right = false;
  bool bottom = false;

  friend constexpr bool operator==(const Anchors&, const Anchors&) = default;
};

/// A control of a form.
class KIV_API Control : public Component {
 public:
  using Component::Component;

  /// The control's own name, for messages. Example: "pnlSus".
  [[nodiscard]] virtual Text Name() const = 0;

  /// Where the control lies: in its container's client area; for a form on the screen.
  [[nodiscard]] virtual Rect Bounds() const = 0;
  /// Moves and resizes it. An aligned control keeps what its alignment leaves free: of a left-aligned one the width.
  virtual void SetBounds(const Rect& bounds) = 0;

  [[nodiscard]] virtual Alignment Aligned() const = 0;
  [[nodiscard]] virtual Anchors Anchored() const = 0;
  /// False where the control itself is hidden; a shown control in a hidden container is visible here.
  [[nodiscard]] virtual bool Visible() const = 0;

  /// True for a control that can contain others, as panels and forms do; such a control can scale itself.
  [[nodiscard]] virtual bool IsContainer() const = 0;
  /// Scales a container by multiplier / divisor: its size, its font and everything in it, and where it is itself inside
  /// another one also its place there. Never called for other controls. Throws DivisionByZero for a divisor of 0.
  virtual void ScaleBy(std::int32_t multiplier, std::int32_t divisor) = 0;

  [[nodiscard]] std::int32_t Left() const { return Bounds().left; }
  [[nodiscard]] std::int32_t Top() const { return Bounds().top; }
  [[nodiscard]] std::int32_t Width() const { return Bounds().Width(); }
  [[nodiscard]] std::int32_t Height() const { return Bounds().Height(); }
  /// Changes the width alone.
  void SetWidth(std::int32_t width);
};

/// A text on a form that is always as wide as its caption.
class KIV_API Label : public Control {
 public:
  using Control::Control;

  [[nodiscard]] virtual Text Caption() const = 0;
  /// Changes the text; Width() is that of the new one as soon as this returns.
  virtual void SetCaption(TextView caption) = 0;
  /// Draws the label at once, without waiting for the application to come round to it.
  virtual void Repaint() = 0;
};

/// Told that a panel has a new size; the argument is the panel.
using ResizeHandler = std::function<void(Object*)>;

/// A control that contains others.
class KIV_API Panel : public Control {
 public:
  using Control::Control;

  /// The controls that lie directly in the panel, in the panel's own order.
  [[nodiscard]] virtual std::vector<Control*> Children() const = 0;
  /// The width of the inner area, without borders.
  [[nodiscard]] virtual std::int32_t ClientWidth() const = 0;

  /// True where the framework lets anybody set the panel's resize handler: for its plain panel class, not for classes
  /// below it that handle their own resizing.
  [[nodiscard]] virtual bool OffersResizeHandler() const = 0;
  [[nodiscard]] virtual bool HasResizeHandler() const = 0;
  /// Sets what is called after each change of the panel's size; an empty one takes the handler away.
  virtual void SetResizeHandler(ResizeHandler handler) = 0;

  [[nodiscard]] bool IsContainer() const override { return true; }
};

/// A form's window for whoever has to ask about it from another thread. It may outlive the form: then it is not
/// visible, and maximising it does nothing. Both may be called from any thread and must not throw.
class KIV_API Window {
 public:
  virtual ~Window() = default;
  [[nodiscard]] virtual bool Visible() const noexcept = 0;
  virtual void Maximise() noexcept = 0;
};

/// A window of the application with its frame.
class KIV_API Form : public Control {
 public:
  using Control::Control;

  /// The form's window; made where the framework has not made one yet.
  [[nodiscard]] virtual std::shared_ptr<Window> GetWindow() = 0;

  [[nodiscard]] bool IsContainer() const override { return true; }
};

}  // namespace kiv::host
