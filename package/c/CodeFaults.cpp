#include "kivtools/c/CodeFaults.h"

#include "package/c/Explained.h"

using namespace kiv::c;

namespace {

/// A number of the C interface as an enumeration; one that no enumerator can have becomes another such.
template <class Enumeration>
Enumeration Enumerated(std::int32_t number) {
  constexpr std::int32_t kNone = 255;
  return static_cast<Enumeration>(number >= 0 && number < kNone ? number : kNone);
}

}  // namespace

extern "C" {

KivLength KivCodeFaultText(const KivCodeFault* fault, int32_t language, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] {
    const KivCodeFault& found = KIV_REQUIRED(fault);
    return kiv::CodeFaultText(
        {Enumerated<kiv::CodeKind>(found.kind), Enumerated<kiv::CodeRule>(found.rule), found.position, found.expected},
        Enumerated<kiv::MessageLanguage>(language));
  });
}

}  // extern "C"
