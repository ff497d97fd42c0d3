#pragma once

#include "kivtools/WinUtil/CodeFaults.h"
#include "kivtools/c/CodeFaults.h"
#include "package/c/Abi.h"

namespace kiv::c {

/// Runs an operation that explains a code, and gives whether it is valid. The other arguments are as the exported
/// function has them; `name` is that of its code.
inline KivAnswer Explain(CodeFault (*operation)(TextView), const char* code, std::size_t length, const char* name,
                         KivCodeFault* fault, const char* function = __builtin_FUNCTION()) noexcept {
  return GiveAnswer(
      [=] {
        KivCodeFault& result = KIV_REQUIRED(fault);
        const CodeFault found = operation(TextArgument(code, length, name));
        result = {static_cast<std::int32_t>(found.kind), static_cast<std::int32_t>(found.rule), found.position,
                  found.expected};
        return found.rule == CodeRule::None;
      },
      function);
}

}  // namespace kiv::c
