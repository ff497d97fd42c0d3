#pragma once

#include <QObject>
#include <unordered_map>

#include "kivtools/Host/QtControls.h"

namespace kiv::host::qt {

/// Sees a widget's events before it does.
class WatchedWidget::Watcher : public QObject {
 public:
  Watcher(WatchedWidget& watched, QWidget& widget);
  ~Watcher() override;

  /// The control of a widget, null where it has none.
  static WatchedWidget* Of(const QWidget* widget);

  void Move(QWidget& widget, const Rect& bounds);
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  static std::unordered_map<const QWidget*, WatchedWidget*>& All();
  /// Passes on a new inner size, once.
  void Tell();

  WatchedWidget& watched_;
  const QWidget* key_;
  Size told_;
  bool moving_ = false;
};

}  // namespace kiv::host::qt
