#include "kivtools/c/DateArithmetic.h"

#include "kivtools/WinUtil/DateArithmetic.h"
#include "package/c/Abi.h"

using namespace kiv::c;

namespace {

void RequireBuffer(const char* buffer, size_t capacity, const char* name) {
  if (capacity > 0) {
    PointerArgument(buffer, name);
  }
}

void GiveLength(KivLength length, KivLength* stored) {
  if (stored != nullptr) {
    *stored = length;
  }
}

}  // namespace

extern "C" {

KivStatus KivIncMonth(double date, int32_t months, double* result) {
  return Run(
      [=] { PointerArgument(result, "KivIncMonth: result") = kiv::IncMonth(kiv::DateTime(date), months).Days(); });
}

KivStatus KivSetDayOfDate(double date, int32_t day, double* result) {
  return Run(
      [=] { PointerArgument(result, "KivSetDayOfDate: result") = kiv::SetDayOfDate(kiv::DateTime(date), day).Days(); });
}

KivStatus KivSetShortDateFormat(const char* format, size_t length) {
  return Run([=] { kiv::SetShortDateFormat(TextArgument(format, length, "KivSetShortDateFormat: format")); });
}

KivStatus KivCalcDurataTotala(double start, double now, int32_t totalCount, int32_t doneCount, double* total,
                              double* remaining) {
  return Run([=] {
    double& totalDays = PointerArgument(total, "KivCalcDurataTotala: total");
    double& remainingDays = PointerArgument(remaining, "KivCalcDurataTotala: remaining");
    kiv::DateTime totalTime;
    kiv::DateTime remainingTime;
    kiv::CalcDurataTotala(kiv::DateTime(start), kiv::DateTime(now), totalCount, doneCount, totalTime, remainingTime);
    totalDays = totalTime.Days();
    remainingDays = remainingTime.Days();
  });
}

KivStatus KivCalcDurataTotalaText(double start, double now, int32_t totalCount, int32_t doneCount, char* total,
                                  size_t totalCapacity, KivLength* totalLength, char* remaining,
                                  size_t remainingCapacity, KivLength* remainingLength) {
  return Run([=] {
    RequireBuffer(total, totalCapacity, "KivCalcDurataTotalaText: total");
    RequireBuffer(remaining, remainingCapacity, "KivCalcDurataTotalaText: remaining");
    kiv::Text totalText;
    kiv::Text remainingText;
    kiv::CalcDurataTotala(kiv::DateTime(start), kiv::DateTime(now), totalCount, doneCount, totalText, remainingText);
    GiveLength(CopyOut(totalText, total, totalCapacity), totalLength);
    GiveLength(CopyOut(remainingText, remaining, remainingCapacity), remainingLength);
  });
}

KivLength KivTimeToStrDurataMS(double time, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::TimeToStrDurataMS(kiv::DateTime(time)); });
}

KivLength KivDateTimeToSmartStrimg(double moment, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::DateTimeToSmartStrimg(kiv::DateTime(moment)); });
}

KivStatus KivSmartStringToDateTime(const char* text, size_t length, double* moment) {
  return Run([=] {
    double& result = PointerArgument(moment, "KivSmartStringToDateTime: moment");
    result = kiv::SmartStringToDateTime(TextArgument(text, length, "KivSmartStringToDateTime: text")).Days();
  });
}

}  // extern "C"
