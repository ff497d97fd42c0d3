/// @file
/// Controls over the widgets of Qt: the application makes its widgets as it always does and puts one of these over each
/// that the library is to know. Alignment, anchors and resize handlers are kept here; sizes, texts, fonts and names
/// (the widget's objectName) are the widget's own.
///
///     qt::Form form(window);                    // a QWidget or QDialog
///     qt::Panel support(&form, *toolbar);       // a QWidget or QFrame in it
///     support.SetAlignment(Alignment::Top);     // follows the form's width from now on
///
/// The widgets are not owned. One may be destroyed before its control, which then is empty and stays where it is. A
/// widget that a QLayout places must not be aligned or anchored here as well. In a QMainWindow the panel over its
/// central widget has no container, as Qt itself places that one.
#pragma once

#include <QLabel>
#include <QPointer>
#include <QWidget>
#include <memory>
#include <vector>

#include "kivtools/Host/LaidOut.h"

namespace kiv::host::qt {

/// A widget that is watched: what it is, and word of its changes.
class WatchedWidget {
 public:
  WatchedWidget(const WatchedWidget&) = delete;
  WatchedWidget& operator=(const WatchedWidget&) = delete;
  virtual ~WatchedWidget();

  /// The widget, null once it is destroyed.
  [[nodiscard]] QWidget* Widget() const noexcept { return widget_; }

 protected:
  /// Throws Error for a widget of another thread, and for one that is watched already.
  explicit WatchedWidget(QWidget& widget);

  /// Where it lies inside its parent's frame; a window on the screen, with its own frame.
  [[nodiscard]] Rect BoundsInParent() const;
  /// Passes on what a resize handler throws.
  void MoveWidgetTo(const Rect& bounds);
  [[nodiscard]] Size InnerSize() const;
  [[nodiscard]] bool IsShown() const;
  /// Gives the widget's font another size of its own.
  void ScaleWidgetFont(std::int32_t multiplier, std::int32_t divisor);

  /// The widget has another inner size. What this throws comes out of MoveWidgetTo; where the user has resized the
  /// window, it is shown in a message dialog, as no exception may pass through Qt.
  virtual void OnSize() = 0;
  /// The widget was shown or hidden in its parent.
  virtual void OnShow() = 0;
  /// A window was shown or hidden, the latter also by its end.
  virtual void OnWindow(bool /*visible*/) {}
  [[nodiscard]] virtual host::Control& WatchedControl() = 0;

 private:
  friend class Panel;
  class Watcher;
  QPointer<QWidget> widget_;
  std::unique_ptr<Watcher> watcher_;
};

/// The widget's objectName. Example: "pnlSus".
[[nodiscard]] Text NameOf(const QWidget& widget);
/// The name of the widget's class. Example: "QPushButton".
[[nodiscard]] Text ClassOf(const QWidget& widget);

/// What the controls of all kinds have in common.
template <class Base>
class OverWidget : public Base, public WatchedWidget {
 public:
  OverWidget(LayoutNode* container, QWidget& widget)
      : Base(container, NameOf(widget)), WatchedWidget(widget), className_(ClassOf(widget)) {
    this->KeepDesign();
  }

  [[nodiscard]] TextView ClassName() const override { return className_; }

 protected:
  [[nodiscard]] Rect Place() const override { return BoundsInParent(); }
  void MoveTo(const Rect& bounds) override { MoveWidgetTo(bounds); }
  [[nodiscard]] Size ClientSize() const override { return InnerSize(); }
  [[nodiscard]] bool Shown() const override { return IsShown(); }
  void ScaleFont(std::int32_t multiplier, std::int32_t divisor) override { ScaleWidgetFont(multiplier, divisor); }
  void OnSize() override { this->Resized(); }
  void OnShow() override { this->ArrangeNeighbours(); }
  [[nodiscard]] host::Control& WatchedControl() override { return *this; }

 private:
  Text className_;
};

/// A widget of any class, as a button or an edit.
class Control : public OverWidget<LaidOut<host::Control>> {
 public:
  Control(LayoutNode* container, QWidget& widget) : OverWidget(container, widget) {}
};

/// A widget with other widgets in it. Those that have no control yet get one when somebody asks for the children.
class Panel : public OverWidget<LaidOutPanel> {
 public:
  Panel(LayoutNode* container, QWidget& widget) : OverWidget(container, widget) {}

  /// In the order in which the widgets came into the panel, unless somebody has raised or lowered one.
  [[nodiscard]] std::vector<host::Control*> Children() const override;
  /// True for a plain QWidget or QFrame.
  [[nodiscard]] bool OffersResizeHandler() const override;

 private:
  mutable std::vector<std::unique_ptr<qt::Control>> unknown_;
};

/// A label with a plain text in one line, measured in the font that it has.
class Label : public OverWidget<LaidOut<host::Label>> {
 public:
  Label(LayoutNode* container, QLabel& label);

  [[nodiscard]] Text Caption() const override;
  void SetCaption(TextView caption) override;
  void Repaint() override;

 protected:
  void ScaleFont(std::int32_t multiplier, std::int32_t divisor) override;

 private:
  [[nodiscard]] QLabel* It() const noexcept { return static_cast<QLabel*>(Widget()); }
  void Fit();
};

/// A window with its frame. Until it is shown for the first time its frame counts as having no width.
class Form : public OverWidget<LaidOutContainer<host::Form>> {
 public:
  explicit Form(QWidget& window);
  ~Form() override;

  [[nodiscard]] std::shared_ptr<Window> GetWindow() override;

 protected:
  void OnWindow(bool visible) override;

 private:
  class ItsWindow;
  std::shared_ptr<ItsWindow> window_;
};

}  // namespace kiv::host::qt
