#include "platform/SystemCalls.h"

namespace kiv::platform {
namespace {

SystemCallGate& OpenGate() noexcept {
  static SystemCallGate gate;
  return gate;
}

}  // namespace

constinit Service<SystemCallGate> system_call_service(&OpenGate);

SystemStatus SystemCallGate::Before(SystemCall /*call*/) noexcept {
  return {};
}

}  // namespace kiv::platform
