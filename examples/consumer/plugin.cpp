#include <kivtools/WinUtil/NumbersInWords.h>

#include <cstdint>
#include <cstdio>

extern "C" int PrintTotal(std::int64_t bani) {
  return std::puts(kiv::InLitere(kiv::Currency::FromRaw(bani * 100)).c_str());
}
