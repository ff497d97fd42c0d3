#include <windows.h>

#include "kivtools/Package.h"

namespace __gnu_cxx {
// The run-time library's own name, which none of its headers declares.
void __freeres();  // NOLINT(bugprone-reserved-identifier,readability-identifier-naming)
}  // namespace __gnu_cxx

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID processEnds) {
  kiv::PackageLoadEntry(reinterpret_cast<kiv::Handle>(module), reason);
  if (reason == DLL_PROCESS_DETACH && processEnds == nullptr) {
    // The C++ run-time library within this file holds memory ready for exceptions in need, and lets go of it only when
    // told: without this each round of loading and unloading would lose 20 KB.
    __gnu_cxx::__freeres();
  }
  return TRUE;
}
