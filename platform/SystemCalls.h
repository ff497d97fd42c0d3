#pragma once

#include <cstdint>

#include "core/Service.h"
#include "platform/SystemError.h"

namespace kiv::platform {

/// The system calls that tests make fail, by what they do.
enum class SystemCall : std::uint8_t {
  Open,
  Read,
  Write,
  Flush,
  Query,
  Resize,
  Lock,
  SetAttributes,
  SetTimes,
  Rename,
  Link,
  Remove,
  MakeFolder,
  List,
  Close,
  Copy,     ///< a whole file, or a part of one, by the system itself
  Reserve,  ///< memory by pages
  StartThread,
  MakeWindow,
  MakeDrawing,  ///< a device context, a bitmap, a font
};

/// Told of each system call before it is made. The built-in one lets all pass; a test stands in its place and makes
/// chosen calls fail.
class SystemCallGate {
 public:
  virtual ~SystemCallGate() = default;
  /// A failure is the call's own, which is then not made; only the handle of a `Close` is closed nevertheless.
  [[nodiscard]] virtual SystemStatus Before(SystemCall call) noexcept;
};

extern constinit Service<SystemCallGate> system_call_service;

/// What the gate says to a call. Costs a load and a comparison where no test has replaced it.
[[nodiscard]] inline SystemStatus Admitted(SystemCall call) noexcept {
  SystemCallGate* const gate = system_call_service.InItsPlace();
  return gate == nullptr ? SystemStatus() : gate->Before(call);
}

}  // namespace kiv::platform
