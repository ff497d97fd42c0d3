#include <windows.h>

#include "kivtools/Package.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID /*reserved*/) {
  kiv::PackageLoadEntry(reinterpret_cast<kiv::Handle>(module), reason);
  return TRUE;
}
