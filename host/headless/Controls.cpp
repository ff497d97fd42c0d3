#include <atomic>

#include "kivtools/Host/HeadlessControls.h"

namespace kiv::host::headless {

Label::Label(LayoutNode* container, Text name, Text className)
    : Placed(container, std::move(name), std::move(className)) {
  Fit();
}

void Label::SetCaption(TextView caption) {
  caption_ = caption;
  Fit();
}

void Label::Repaint() {
  if (shown_) {
    shown_(caption_);
  }
}

void Label::ScaleFont(std::int32_t multiplier, std::int32_t divisor) {
  letter_ = {letter_.width * multiplier / divisor, letter_.height * multiplier / divisor};
  Fit();
}

void Label::Fit() {
  const Rect now = Place();
  const auto letters = static_cast<std::int32_t>(caption_.size());
  PutAt(Rect::At(now.left, now.top, letters * letter_.width, letter_.height));
}

/// What is left of the form for other threads.
class Form::ItsWindow : public Window {
 public:
  [[nodiscard]] bool Visible() const noexcept override { return visible_; }
  void Maximise() noexcept override { maximised_ = visible_.load(); }

  void SetVisible(bool visible) noexcept { visible_ = visible; }
  [[nodiscard]] bool Maximised() const noexcept { return maximised_; }

 private:
  std::atomic<bool> visible_{false};
  std::atomic<bool> maximised_{false};
};

Form::Form(Text name, Text className)
    : Placed(nullptr, std::move(name), std::move(className)), window_(std::make_shared<ItsWindow>()) {
  Placed::SetVisible(false);
}

Form::~Form() {
  window_->SetVisible(false);
}

void Form::SetVisible(bool visible) {
  Placed::SetVisible(visible);
  window_->SetVisible(visible);
}

std::shared_ptr<Window> Form::GetWindow() {
  return window_;
}

bool Form::Maximised() const noexcept {
  return window_->Maximised();
}

}  // namespace kiv::host::headless
