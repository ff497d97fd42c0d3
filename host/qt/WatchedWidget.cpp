#include <QEvent>
#include <QThread>
#include <algorithm>
#include <cmath>
#include <exception>
#include <utility>

#include "host/qt/Texts.h"
#include "host/qt/Watcher.h"
#include "kivtools/Host.h"

namespace kiv::host::qt {
namespace {

/// No exception may pass through Qt's own frames, from which this is called.
template <class Notify>
void Guarded(Notify&& notify) noexcept {
  try {
    notify();
  } catch (const std::exception& failure) {
    ShowFailure(failure);
  }
}

/// The corner of a widget's inner area, from which the places of its children count.
QPoint InnerCorner(const QWidget* widget) {
  return widget != nullptr ? widget->contentsRect().topLeft() : QPoint();
}

}  // namespace

WatchedWidget::Watcher::Watcher(WatchedWidget& watched, QWidget& widget)
    : watched_(watched), key_(&widget), told_(watched.InnerSize()) {
  const auto [entry, isNew] = All().try_emplace(key_, &watched);
  if (!isNew) {
    throw Error("Widgetul are deja un control: " + NameOf(widget) + ":" + ClassOf(widget));
  }
  widget.installEventFilter(this);
  connect(&widget, &QObject::destroyed, this, [this] {
    All().erase(key_);
    key_ = nullptr;
    watched_.widget_.clear();
    watched_.OnWindow(false);
  });
}

WatchedWidget::Watcher::~Watcher() {
  if (key_ != nullptr) {
    All().erase(key_);
  }
}

std::unordered_map<const QWidget*, WatchedWidget*>& WatchedWidget::Watcher::All() {
  static std::unordered_map<const QWidget*, WatchedWidget*> all;
  return all;
}

WatchedWidget* WatchedWidget::Watcher::Of(const QWidget* widget) {
  const auto entry = All().find(widget);
  return entry == All().end() ? nullptr : entry->second;
}

void WatchedWidget::Watcher::Tell() {
  const Size now = watched_.InnerSize();
  if (now != told_) {
    told_ = now;
    watched_.OnSize();
  }
}

void WatchedWidget::Watcher::Move(QWidget& widget, const Rect& bounds) {
  const QSize size(std::max(bounds.Width(), 0), std::max(bounds.Height(), 0));
  const bool before = std::exchange(moving_, true);
  if (widget.isWindow()) {
    // In two steps, because only move() counts the frame before the window system has told how wide it is.
    widget.move(bounds.left, bounds.top);
    widget.resize((size - (widget.frameGeometry().size() - widget.size())).expandedTo(QSize(0, 0)));
  } else {
    widget.setGeometry(QRect(QPoint(bounds.left, bounds.top) + InnerCorner(widget.parentWidget()), size));
  }
  moving_ = before;
  // Qt tells a hidden widget of its size only when it is shown.
  Tell();
}

bool WatchedWidget::Watcher::eventFilter(QObject* object, QEvent* event) {
  switch (event->type()) {
    case QEvent::Resize:
      if (!moving_) {
        Guarded([this] { Tell(); });
      }
      break;
    case QEvent::ShowToParent:
    case QEvent::HideToParent:
      Guarded([this] { watched_.OnShow(); });
      break;
    case QEvent::Show:
    case QEvent::Hide:
      if (!event->spontaneous()) {  // minimised, it is still shown
        watched_.OnWindow(event->type() == QEvent::Show);
      }
      break;
    default:
      break;
  }
  return QObject::eventFilter(object, event);
}

Text NameOf(const QWidget& widget) {
  return FromQt(widget.objectName());
}

Text ClassOf(const QWidget& widget) {
  return widget.metaObject()->className();
}

WatchedWidget::WatchedWidget(QWidget& widget) : widget_(&widget) {
  if (widget.thread() != QThread::currentThread()) {
    throw Error("Nu este un widget al acestui fir: " + NameOf(widget) + ":" + ClassOf(widget));
  }
  watcher_ = std::make_unique<Watcher>(*this, widget);
}

WatchedWidget::~WatchedWidget() = default;

Rect WatchedWidget::BoundsInParent() const {
  if (widget_ == nullptr) {
    return {};
  }
  const QRect bounds = widget_->isWindow() ? widget_->frameGeometry()
                                           : widget_->geometry().translated(-InnerCorner(widget_->parentWidget()));
  return Rect::At(bounds.x(), bounds.y(), bounds.width(), bounds.height());
}

void WatchedWidget::MoveWidgetTo(const Rect& bounds) {
  if (widget_ != nullptr) {
    watcher_->Move(*widget_, bounds);
  }
}

Size WatchedWidget::InnerSize() const {
  const QSize size = widget_ != nullptr ? widget_->contentsRect().size() : QSize();
  return {std::max(size.width(), 0), std::max(size.height(), 0)};
}

bool WatchedWidget::IsShown() const {
  return widget_ != nullptr && !widget_->isHidden();
}

void WatchedWidget::ScaleWidgetFont(std::int32_t multiplier, std::int32_t divisor) {
  if (widget_ == nullptr) {
    return;
  }
  widget_->ensurePolished();
  QFont font = widget_->font();
  const qreal ratio = static_cast<qreal>(multiplier) / divisor;
  // Qt refuses a font without a height.
  if (font.pixelSize() > 0) {
    font.setPixelSize(std::max(1, static_cast<int>(std::lround(font.pixelSize() * ratio))));
  } else {
    font.setPointSizeF(std::max(1.0, font.pointSizeF() * ratio));
  }
  widget_->setFont(font);
}

}  // namespace kiv::host::qt
