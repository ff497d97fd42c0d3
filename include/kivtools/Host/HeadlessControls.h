/// @file
/// Controls without windows: a laid-out tree in memory. A form of them behaves as one on a screen does, as far as
/// places, sizes, alignment, anchors and handlers go; nothing is drawn.
///
///     headless::Form form("frmFactura");
///     form.SetBounds(Rect::At(0, 0, 600, 400));
///     headless::Panel support(&form, "pnlSus");
///     support.SetBounds(Rect::At(0, 0, 0, 40));
///     support.SetAlignment(Alignment::Top);        // 600 wide, and as wide as the form from now on
#pragma once

#include "kivtools/Host/LaidOut.h"

namespace kiv::host::headless {

/// What the controls of all kinds have in common.
template <class Base>
class Placed : public Base {
 public:
  /// A control of that name and class in that container; null for none.
  Placed(LayoutNode* container, Text name, Text className)
      : Base(container, std::move(name)), className_(std::move(className)) {
    this->KeepDesign();
  }

  [[nodiscard]] TextView ClassName() const override { return className_; }
  /// Shows or hides the control; its neighbours are laid out anew.
  void SetVisible(bool visible) {
    visible_ = visible;
    this->ArrangeNeighbours();
  }

 protected:
  [[nodiscard]] Rect Place() const override { return bounds_; }
  void MoveTo(const Rect& bounds) override {
    const bool resized = bounds.Width() != bounds_.Width() || bounds.Height() != bounds_.Height();
    bounds_ = bounds;
    if (resized) {
      this->Resized();
    }
  }
  [[nodiscard]] Size ClientSize() const override { return {bounds_.Width(), bounds_.Height()}; }
  [[nodiscard]] bool Shown() const override { return visible_; }

 private:
  Text className_;
  Rect bounds_;
  bool visible_ = true;
};

/// A control of any class, as a button or an edit.
class KIV_API Control : public Placed<LaidOut<host::Control>> {
 public:
  explicit Control(LayoutNode* container, Text name, Text className = "TButton")
      : Placed(container, std::move(name), std::move(className)) {}
};

/// A panel without borders. Its class is TPanel, or one below it, which keeps its resize handler to itself.
class KIV_API Panel : public Placed<LaidOutPanel> {
 public:
  explicit Panel(LayoutNode* container, Text name, Text className = "TPanel")
      : Placed(container, std::move(name), std::move(className)) {}
  [[nodiscard]] bool OffersResizeHandler() const override { return ClassName() == "TPanel"; }
};

/// A label in a font whose letters are all 8 pixels wide and 16 high, until it is scaled.
class KIV_API Label : public Placed<LaidOut<host::Label>> {
 public:
  explicit Label(LayoutNode* container, Text name, Text className = "TLabel");

  [[nodiscard]] Text Caption() const override { return caption_; }
  void SetCaption(TextView caption) override;
  void Repaint() override;
  /// Sets what each Repaint calls with the caption, as a progress log of a server does; nothing from the start.
  void OnRepaint(std::function<void(const Text&)> shown) { shown_ = std::move(shown); }

 protected:
  void ScaleFont(std::int32_t multiplier, std::int32_t divisor) override;

 private:
  void Fit();

  Text caption_;
  Size letter_{8, 16};
  std::function<void(const Text&)> shown_;
};

/// A form without a frame. It is hidden until it is shown, as forms are.
class KIV_API Form : public Placed<LaidOutContainer<host::Form>> {
 public:
  explicit Form(Text name, Text className = "TForm");
  ~Form() override;

  /// The window may be asked from any thread; this hides and shows it for all of them.
  void SetVisible(bool visible);
  [[nodiscard]] std::shared_ptr<Window> GetWindow() override;
  /// True once somebody has maximised the window. The bounds stay as they are: there is no frame that the user could
  /// bring back. May be called from any thread.
  [[nodiscard]] bool Maximised() const noexcept;

 private:
  class ItsWindow;
  std::shared_ptr<ItsWindow> window_;
};

}  // namespace kiv::host::headless
