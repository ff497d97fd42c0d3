#pragma once

#include <cerrno>

#include "platform/SystemCalls.h"

namespace kiv::platform {

/// Makes a system call that gives -1 for failure, again where a signal interrupted it.
template <class Result, class Call>
SystemStatus MakeCall(SystemCall kind, Result& result, Call&& call) noexcept {
  if (const SystemStatus refused = Admitted(kind); refused.Failed()) {
    return refused;
  }
  while ((result = call()) == -1) {
    if (errno != EINTR) {
      return LastStatus();
    }
  }
  return {};
}

/// The same for a call whose result says nothing else.
template <class Call>
SystemStatus MakeCall(SystemCall kind, Call&& call) noexcept {
  int result = 0;
  return MakeCall(kind, result, call);
}

}  // namespace kiv::platform
