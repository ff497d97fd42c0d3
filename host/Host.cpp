#include "kivtools/Host.h"

#include <algorithm>
#include <thread>
#include <tuple>

#include "core/Service.h"
#include "host/BuiltIn.h"
#include "kivtools/Host/Headless.h"

namespace kiv::host {
namespace {

constinit Service<Host> host_service(&BuiltInHost);

const std::thread::id kLoadingThread = std::this_thread::get_id();

}  // namespace

Component::Component(Component* owner) : owner_(owner) {
  if (owner_ != nullptr) {
    owner_->owned_.push_back(this);
  }
}

Component::~Component() {
  while (!owned_.empty()) {
    Component* const last = owned_.back();
    owned_.pop_back();
    last->owner_ = nullptr;
    delete last;
  }
  if (owner_ != nullptr) {
    std::erase(owner_->owned_, this);
  }
}

void Control::SetWidth(std::int32_t width) {
  const Rect now = Bounds();
  SetBounds(Rect::At(now.left, now.top, width, now.Height()));
}

Host& BuiltInHost() noexcept {
  static headless::Host withoutWindows;
  Host* const withWindows = WindowedHost();
  return withWindows != nullptr ? *withWindows : withoutWindows;
}

bool OnLoadingThread() noexcept {
  return std::this_thread::get_id() == kLoadingThread;
}

Host::~Host() {
  host_service.Withdraw(*this);
}

Application& Host::GetApplication() {
  return BuiltInHost().GetApplication();
}

Screen& Host::GetScreen() {
  return BuiltInHost().GetScreen();
}

Dialogs& Host::GetDialogs() {
  return BuiltInHost().GetDialogs();
}

Clipboard& Host::GetClipboard() {
  return BuiltInHost().GetClipboard();
}

Colours& Host::GetColours() {
  return BuiltInHost().GetColours();
}

void Host::RegisterComponent(const ComponentClass& componentClass) {
  const auto same = [&componentClass](const ComponentClass& known) {
    return known.page == componentClass.page && known.name == componentClass.name;
  };
  const auto found = std::find_if(palette_.begin(), palette_.end(), same);
  if (found != palette_.end()) {
    *found = componentClass;
  } else {
    palette_.push_back(componentClass);
  }
}

void Install(Host& host) noexcept {
  host_service.Replace(&host);
}

Host& Current() noexcept {
  return host_service.Current();
}

void ShowFailure(const std::exception& failure) noexcept {
  try {
    std::ignore = Current().GetDialogs().Ask(DialogKind::Error, failure.what(), DialogButtons::Ok);
  } catch (...) {
    // Nobody is there to be told.
  }
}

}  // namespace kiv::host
