/// @file
/// Controls over plain windows of the system, whatever toolkit has made them (on Windows alone): the application makes
/// its windows as it always does and puts one of these over each that the library is to know. Alignment, anchors and
/// resize handlers, which the system does not have, are kept here; sizes and texts are the window's own.
///
///     win32::Form form("frmFactura", reinterpret_cast<Handle>(hwnd));
///     win32::Panel support(&form, "pnlSus", reinterpret_cast<Handle>(child));
///     support.SetAlignment(Alignment::Top);     // follows the form's width from now on
///
/// The windows are not owned. One may be destroyed before its control, which then is empty and stays where it is.
#pragma once

#include <memory>
#include <vector>

#include "kivtools/Host/LaidOut.h"

namespace kiv::host::win32 {

/// A window that is watched: what it is, and word of its changes.
class KIV_API WatchedWindow {
 public:
  WatchedWindow(const WatchedWindow&) = delete;
  WatchedWindow& operator=(const WatchedWindow&) = delete;
  virtual ~WatchedWindow();

  /// The window, 0 once it is destroyed.
  [[nodiscard]] Handle NativeWindow() const noexcept { return window_; }

 protected:
  /// Throws Error for a window that is none, belongs to another thread, or is watched already.
  explicit WatchedWindow(Handle window);

  /// Where it lies in its parent's client area, one without a parent on the screen.
  [[nodiscard]] Rect BoundsInParent() const noexcept;
  /// Throws OsError where the system refuses, and whatever a resize handler has thrown.
  void MoveWindowTo(const Rect& bounds);
  [[nodiscard]] Size InnerSize() const noexcept;
  [[nodiscard]] bool IsShown() const noexcept;
  [[nodiscard]] Text ClassOfWindow() const;
  /// Gives the window its own font in another size.
  void ScaleWindowFont(std::int32_t multiplier, std::int32_t divisor);

  /// The window has another inner size. What this throws comes out of MoveWindowTo; where the user has resized the
  /// window, it is shown in a message dialog.
  virtual void OnSize() = 0;
  /// The window was shown or hidden.
  virtual void OnShow() = 0;
  [[nodiscard]] virtual host::Control& WatchedControl() = 0;

 private:
  friend class Watching;
  friend class Panel;
  Handle window_;
  Handle font_ = 0;
};

/// What the controls of all kinds have in common.
template <class Base>
class OverWindow : public Base, public WatchedWindow {
 public:
  OverWindow(LayoutNode* container, Text name, Handle window, Text className)
      : Base(container, std::move(name)),
        WatchedWindow(window),
        className_(className.empty() ? ClassOfWindow() : std::move(className)) {
    this->KeepDesign();
  }

  [[nodiscard]] TextView ClassName() const override { return className_; }

 protected:
  [[nodiscard]] Rect Place() const override { return BoundsInParent(); }
  void MoveTo(const Rect& bounds) override { MoveWindowTo(bounds); }
  [[nodiscard]] Size ClientSize() const override { return InnerSize(); }
  [[nodiscard]] bool Shown() const override { return IsShown(); }
  void ScaleFont(std::int32_t multiplier, std::int32_t divisor) override { ScaleWindowFont(multiplier, divisor); }
  void OnSize() override { this->Resized(); }
  void OnShow() override { this->ArrangeNeighbours(); }
  [[nodiscard]] host::Control& WatchedControl() override { return *this; }

 private:
  Text className_;
};

/// A control of any class, as a button or an edit. Without a class name it has its window's.
class KIV_API Control : public OverWindow<LaidOut<host::Control>> {
 public:
  Control(LayoutNode* container, Text name, Handle window, Text className = {})
      : OverWindow(container, std::move(name), window, std::move(className)) {}
};

/// A window with other windows in it. Those of its child windows that have no control yet get one, named by their text.
class KIV_API Panel : public OverWindow<LaidOutPanel> {
 public:
  Panel(LayoutNode* container, Text name, Handle window, Text className = "TPanel")
      : OverWindow(container, std::move(name), window, std::move(className)) {}

  /// In the order in which the windows were made, unless somebody has changed it.
  [[nodiscard]] std::vector<host::Control*> Children() const override;
  [[nodiscard]] bool OffersResizeHandler() const override { return ClassName() == "TPanel"; }

 private:
  mutable std::vector<std::unique_ptr<win32::Control>> unnamed_;
};

/// A static control with a text in one line, measured in the font that it has.
class KIV_API Label : public OverWindow<LaidOut<host::Label>> {
 public:
  Label(LayoutNode* container, Text name, Handle window, Text className = "TLabel");

  [[nodiscard]] Text Caption() const override;
  void SetCaption(TextView caption) override;
  void Repaint() override;

 protected:
  void ScaleFont(std::int32_t multiplier, std::int32_t divisor) override;

 private:
  void Fit();
};

/// A window with a frame.
class KIV_API Form : public OverWindow<LaidOutContainer<host::Form>> {
 public:
  Form(Text name, Handle window, Text className = "TForm")
      : OverWindow(nullptr, std::move(name), window, std::move(className)) {}

  [[nodiscard]] std::shared_ptr<Window> GetWindow() override;
};

}  // namespace kiv::host::win32
