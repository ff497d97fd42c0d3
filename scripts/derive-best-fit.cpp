// Prints, in the form of a C++ table, what the system's own conversion to Windows-1250 gives for the UTF-16 units that
// the code page lacks: the letter that looks most alike. Units that give "?" are left out.
#include <windows.h>

#include <cstdio>

int main() {
  const UINT codePage = 1250;
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
    const wchar_t asked = static_cast<wchar_t>(unit);
    char given = 0;
    wchar_t back = 0;
    if (WideCharToMultiByte(codePage, 0, &asked, 1, &given, 1, nullptr, nullptr) != 1 ||
        MultiByteToWideChar(codePage, 0, &given, 1, &back, 1) != 1) {
      std::fprintf(stderr, "the system cannot convert U+%04X\n", unit);
      return 1;
    }
    if (back != asked && given != '?') {
      std::printf("{0x%04X, 0x%02X},\n", unit, static_cast<unsigned char>(given));
    }
  }
  return std::fflush(stdout) == 0 ? 0 : 1;
}
