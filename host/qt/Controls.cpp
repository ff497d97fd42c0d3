#include <QFontMetrics>
#include <QMetaObject>
#include <algorithm>
#include <atomic>
#include <mutex>

#include "host/qt/Texts.h"
#include "host/qt/Watcher.h"

namespace kiv::host::qt {

std::vector<host::Control*> Panel::Children() const {
  std::erase_if(unknown_, [](const auto& control) { return control->Widget() == nullptr; });
  std::vector<host::Control*> children;
  if (Widget() == nullptr) {
    return children;
  }
  for (QWidget* const child : Widget()->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
    if (child->isWindow()) {
      continue;
    }
    WatchedWidget* watched = Watcher::Of(child);
    if (watched == nullptr) {
      // Joining the panel's tree changes nothing that can be seen of it.
      auto* const self = const_cast<Panel*>(this);
      unknown_.push_back(std::make_unique<qt::Control>(self, *child));
      watched = unknown_.back().get();
    }
    children.push_back(&watched->WatchedControl());
  }
  return children;
}

bool Panel::OffersResizeHandler() const {
  return ClassName() == "QWidget" || ClassName() == "QFrame";
}

Label::Label(LayoutNode* container, QLabel& label) : OverWidget(container, label) {
  // A name with "<" in it is no marked-up text, and a long one stays in its line.
  label.setTextFormat(Qt::PlainText);
  label.setWordWrap(false);
  Fit();
}

Text Label::Caption() const {
  return It() != nullptr ? FromQt(It()->text()) : Text();
}

void Label::SetCaption(TextView caption) {
  if (It() != nullptr) {
    It()->setText(ToQt(caption, DiacriticForm::CommaBelow));
    Fit();
  }
}

void Label::Repaint() {
  if (It() != nullptr) {
    It()->repaint();
  }
}

void Label::ScaleFont(std::int32_t multiplier, std::int32_t divisor) {
  ScaleWidgetFont(multiplier, divisor);
  Fit();
}

void Label::Fit() {
  if (It() == nullptr) {
    return;
  }
  It()->ensurePolished();
  const QSize wanted = It()->sizeHint();
  const bool empty = It()->text().isEmpty();
  const Rect now = Place();
  // The height of an empty text is that of a line.
  PutAt(
      Rect::At(now.left, now.top, empty ? 0 : wanted.width(), std::max(wanted.height(), It()->fontMetrics().height())));
}

/// What is left of the form for other threads.
class Form::ItsWindow : public Window {
 public:
  explicit ItsWindow(QWidget& widget) : widget_(&widget), visible_(widget.isVisible()) {}

  [[nodiscard]] bool Visible() const noexcept override { return visible_; }

  /// Widgets belong to the main thread: it is asked to, and does so in its next round of events.
  void Maximise() noexcept override {
    try {
      const std::scoped_lock lock(mutex_);
      if (widget_ != nullptr) {
        QMetaObject::invokeMethod(
            widget_, [widget = widget_] { MaximiseNow(*widget); }, Qt::QueuedConnection);
      }
    } catch (...) {
      // Without memory for the request the window keeps its size.
    }
  }

  void SetVisible(bool visible) noexcept { visible_ = visible; }

  /// The widget is about to go; what waits for it goes with it.
  void Leave() noexcept {
    visible_ = false;
    const std::scoped_lock lock(mutex_);
    widget_ = nullptr;
  }

 private:
  static void MaximiseNow(QWidget& widget) {
    if (widget.isVisible()) {
      widget.setWindowState(widget.windowState() | Qt::WindowMaximized);
    }
  }

  std::mutex mutex_;
  QWidget* widget_;
  std::atomic<bool> visible_;
};

Form::Form(QWidget& window) : OverWidget(nullptr, window), window_(std::make_shared<ItsWindow>(window)) {}

Form::~Form() {
  window_->Leave();
}

std::shared_ptr<Window> Form::GetWindow() {
  return window_;
}

void Form::OnWindow(bool visible) {
  if (Widget() == nullptr) {
    window_->Leave();
  } else {
    window_->SetVisible(visible);
  }
}

}  // namespace kiv::host::qt
