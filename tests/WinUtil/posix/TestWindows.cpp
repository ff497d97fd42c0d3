#include "WinUtil/TestWindows.h"

#include <algorithm>
#include <mutex>
#include <thread>

#include "platform/WindowSystem.h"

namespace kiv {
namespace {

struct Window {
  Handle handle;
  Handle parent;
  Text className;
  Text text;
  host::Rect bounds;
};

/// What the windows are, for the thread that has them and the one that watches.
struct Model {
  std::mutex mutex;
  std::vector<Window> windows;  // in the order in which they were made, so owners come first
  std::vector<Handle> clicks;
  Handle foreground = 0;
  Handle last = 0x10000;
  bool hangs = false;

  Window* Find(Handle handle) {
    const auto found = std::ranges::find(windows, handle, &Window::handle);
    return found == windows.end() ? nullptr : &*found;
  }
};

class ModelWindows : public platform::ThreadWindows {
 public:
  explicit ModelWindows(Model& model) : model_(model) {}

  [[nodiscard]] std::vector<Handle> TopLevel() const override { return Children(0); }
  [[nodiscard]] std::vector<Handle> Children(Handle window) const override {
    const std::scoped_lock lock(model_.mutex);
    std::vector<Handle> children;
    for (const Window& other : model_.windows) {
      if (other.parent == window) {
        children.push_back(other.handle);
      }
    }
    return children;
  }
  [[nodiscard]] Text ClassOf(Handle window) const override {
    const std::scoped_lock lock(model_.mutex);
    const Window* const found = model_.Find(window);
    return found == nullptr ? Text() : found->className;
  }
  [[nodiscard]] std::optional<Text> TextOf(Handle window, std::chrono::milliseconds limit) override {
    const std::scoped_lock lock(model_.mutex);
    const Window* const found = model_.Find(window);
    if (found == nullptr || model_.hangs || limit.count() != 100) {
      return std::nullopt;
    }
    return found->text;
  }
  void SetText(Handle window, TextView text) override {
    const std::scoped_lock lock(model_.mutex);
    if (Window* const found = model_.Find(window)) {
      found->text = text;
    }
  }
  void Resize(Handle window, std::int32_t width, std::int32_t height) override {
    const std::scoped_lock lock(model_.mutex);
    if (Window* const found = model_.Find(window)) {
      found->bounds = host::Rect::At(found->bounds.left, found->bounds.top, width, height);
    }
  }
  void Click(Handle window) override {
    const std::scoped_lock lock(model_.mutex);
    if (model_.Find(window) != nullptr) {
      model_.clicks.push_back(window);
    }
  }
  [[nodiscard]] Handle Foreground() const override {
    const std::scoped_lock lock(model_.mutex);
    return model_.foreground;
  }
  void AnswerOthers() override {}

 private:
  Model& model_;
};

}  // namespace

struct TestWindows::State : platform::WindowSystem {
  [[nodiscard]] std::unique_ptr<platform::ThreadWindows> OfThisThread(TextView /*operation*/) const override {
    return std::make_unique<ModelWindows>(model);
  }

  mutable Model model;
  Replacement<const platform::WindowSystem> inUse{platform::window_system_service, *this};
};

TestWindows::TestWindows() : state_(std::make_unique<State>()) {}
TestWindows::~TestWindows() = default;

Handle TestWindows::Make(TextView className, TextView text, Handle parent) {
  const std::scoped_lock lock(state_->model.mutex);
  Model& model = state_->model;
  model.last += 2;
  model.windows.push_back({model.last, parent, Text(className), Text(text), host::Rect::At(5, 7, 30, 10)});
  return model.last;
}

Handle TestWindows::MakeDialog(TextView caption, Handle /*owner*/) {
  return Make("#32770", caption, 0);
}

void TestWindows::Destroy(Handle window) {
  const std::scoped_lock lock(state_->model.mutex);
  std::erase_if(state_->model.windows,
                [window](const Window& other) { return other.handle == window || other.parent == window; });
}

void TestWindows::SetText(Handle window, TextView text) {
  const std::scoped_lock lock(state_->model.mutex);
  state_->model.Find(window)->text = text;
}

Text TestWindows::TextOf(Handle window) const {
  const std::scoped_lock lock(state_->model.mutex);
  return state_->model.Find(window)->text;
}

host::Rect TestWindows::BoundsOf(Handle window) const {
  const std::scoped_lock lock(state_->model.mutex);
  return state_->model.Find(window)->bounds;
}

void TestWindows::BringToFront(Handle window) {
  const std::scoped_lock lock(state_->model.mutex);
  state_->model.foreground = window;
}

void TestWindows::Serve() {
  std::this_thread::yield();
}

std::vector<Handle> TestWindows::TakeClicks() {
  const std::scoped_lock lock(state_->model.mutex);
  return std::exchange(state_->model.clicks, {});
}

void TestWindows::Hang(std::chrono::milliseconds /*duration*/) {
  const auto set = [this](bool hangs) {
    const std::scoped_lock lock(state_->model.mutex);
    state_->model.hangs = hangs;
  };
  set(true);
  std::this_thread::sleep_for(std::chrono::milliseconds(5));
  set(false);
}

}  // namespace kiv
