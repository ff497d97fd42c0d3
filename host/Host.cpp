#include "kivtools/Host.h"

#include <algorithm>

#include "core/Service.h"
#include "host/BuiltIn.h"

namespace kiv::host {
namespace {

Host& BuiltInHost() noexcept {
  static Host builtIn;
  return builtIn;
}

constinit Service<Host> host_service(&BuiltInHost);

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

Host::~Host() {
  host_service.Withdraw(*this);
}

Clipboard& Host::Clipboard() {
  return BuiltInClipboard();
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

}  // namespace kiv::host
