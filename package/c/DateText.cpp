#include "kivtools/c/DateText.h"

#include "kivtools/WinUtil/DateText.h"
#include "package/c/Abi.h"

using namespace kiv::c;

namespace {

KivLength WriteDate(kiv::Text (*form)(kiv::DateTime), double days, char* buffer, size_t capacity,
                    const char* name = __builtin_FUNCTION()) {
  return GiveText(
      buffer, capacity, [=] { return form(kiv::DateTime(days)); }, name);
}

}  // namespace

extern "C" {

KivStatus KivEncodeDate(int32_t year, int32_t month, int32_t day, int32_t hour, int32_t minute, int32_t second,
                        int32_t millisecond, double* days) {
  return Run([=] {
    double& result = KIV_REQUIRED(days);
    result = kiv::DateTime::Encode(year, month, day, hour, minute, second, millisecond).Days();
  });
}

KivStatus KivDecodeDate(double days, KivDateParts* parts) {
  return Run([=] {
    KivDateParts& result = KIV_REQUIRED(parts);
    const auto [year, month, day, hour, minute, second, millisecond, dayOfWeek] = kiv::DateTime(days).Decode();
    result = {year, month, day, hour, minute, second, millisecond, dayOfWeek};
  });
}

KivLength KivDateToRoText(double days, char* buffer, size_t capacity) {
  return WriteDate(kiv::DateToRoText, days, buffer, capacity);
}

KivLength KivDateToRoText2(double days, char* buffer, size_t capacity) {
  return WriteDate(kiv::DateToRoText2, days, buffer, capacity);
}

KivLength KivDateToRoText3(double days, char* buffer, size_t capacity) {
  return WriteDate(kiv::DateToRoText3, days, buffer, capacity);
}

KivLength KivDateToRoText4(double days, char* buffer, size_t capacity) {
  return WriteDate(kiv::DateToRoText4, days, buffer, capacity);
}

KivLength KivDateToRoText5(double days, char* buffer, size_t capacity) {
  return WriteDate(kiv::DateToRoText5, days, buffer, capacity);
}

KivLength KivDateToRoText6(double days, char* buffer, size_t capacity) {
  return WriteDate(kiv::DateToRoText6, days, buffer, capacity);
}

KivLength KivDateToRoText7(double days, char* buffer, size_t capacity) {
  return WriteDate(kiv::DateToRoText7, days, buffer, capacity);
}

KivLength KivDateToRoCode(double days, char* buffer, size_t capacity) {
  return WriteDate(kiv::DateToRoCode, days, buffer, capacity);
}

KivLength KivDateToRoTextScurt(double days, char* buffer, size_t capacity) {
  return WriteDate(kiv::DateToRoTextScurt, days, buffer, capacity);
}

KivLength KivDateToRoTextScurtCuAn(double days, char* buffer, size_t capacity) {
  return WriteDate(kiv::DateToRoTextScurtCuAn, days, buffer, capacity);
}

KivLength KivDateToRoTextScurtCuAnPlusOra(double days, char* buffer, size_t capacity) {
  return WriteDate(kiv::DateToRoTextScurtCuAnPlusOra, days, buffer, capacity);
}

KivLength KivNumeZiDinSaptamana(double days, char* buffer, size_t capacity) {
  return WriteDate(kiv::NumeZiDinSaptamana, days, buffer, capacity);
}

KivLength KivTimeToStrRoFrumos(double days, char* buffer, size_t capacity) {
  return WriteDate(kiv::TimeToStrRoFrumos, days, buffer, capacity);
}

KivLength KivTimeToStrRo(double days, char* buffer, size_t capacity) {
  return WriteDate(kiv::TimeToStrRo, days, buffer, capacity);
}

KivLength KivTimeToStrRo2(double days, char* buffer, size_t capacity) {
  return WriteDate(kiv::TimeToStrRo2, days, buffer, capacity);
}

KivStatus KivRoCodeToDate(const char* text, size_t length, double* days) {
  return Run([=] {
    double& result = KIV_REQUIRED(days);
    result = kiv::RoCodeToDate(KIV_TEXT(text, length)).Days();
  });
}

KivLength KivDateToRoText_WithCode(double days, int32_t first, int32_t second, int32_t month, int32_t third,
                                   char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] {
    return kiv::DateToRoText_WithCode(kiv::DateTime(days), first != 0, second != 0,
                                      static_cast<kiv::TCumScriuLuna>(month), third != 0);
  });
}

}  // extern "C"
