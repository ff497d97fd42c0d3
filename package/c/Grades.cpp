#include "kivtools/c/Grades.h"

#include "kivtools/WideTools/Grades.h"
#include "kivtools/WinUtil/Grades.h"
#include "package/c/Abi.h"

using namespace kiv::c;

extern "C" {

KivLength KivNotaToStr(int32_t grade, int32_t mode, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::NotaToStr(grade, mode); });
}

KivLength KivNotaToTextLung(int32_t grade, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::NotaToTextLung(grade); });
}

KivLength KivNotaToTextScurt(int32_t grade, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::NotaToTextScurt(grade); });
}

}  // extern "C"
