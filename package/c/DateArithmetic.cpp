#include "kivtools/c/DateArithmetic.h"

#include "kivtools/WinUtil/DateArithmetic.h"
#include "package/c/Abi.h"

using namespace kiv::c;

namespace {

void StoreLength(KivLength length, KivLength* stored) {
  if (stored != nullptr) {
    *stored = length;
  }
}

}  // namespace

extern "C" {

KivStatus KivIncMonth(double date, int32_t months, double* result) {
  return Run([=] { KIV_REQUIRED(result) = kiv::IncMonth(kiv::DateTime(date), months).Days(); });
}

KivStatus KivSetDayOfDate(double date, int32_t day, double* result) {
  return Run([=] { KIV_REQUIRED(result) = kiv::SetDayOfDate(kiv::DateTime(date), day).Days(); });
}

KivStatus KivSetShortDateFormat(const char* format, size_t length) {
  return Run([=] { kiv::SetShortDateFormat(KIV_TEXT(format, length)); });
}

KivStatus KivCalcDurataTotala(double start, double now, int32_t totalCount, int32_t doneCount, double* total,
                              double* remaining) {
  return Run([=] {
    double& totalDays = KIV_REQUIRED(total);
    double& remainingDays = KIV_REQUIRED(remaining);
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
    KIV_BUFFER(total, totalCapacity);
    KIV_BUFFER(remaining, remainingCapacity);
    kiv::Text totalText;
    kiv::Text remainingText;
    kiv::CalcDurataTotala(kiv::DateTime(start), kiv::DateTime(now), totalCount, doneCount, totalText, remainingText);
    StoreLength(CopyOut(totalText, total, totalCapacity), totalLength);
    StoreLength(CopyOut(remainingText, remaining, remainingCapacity), remainingLength);
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
    double& result = KIV_REQUIRED(moment);
    result = kiv::SmartStringToDateTime(KIV_TEXT(text, length)).Days();
  });
}

}  // extern "C"
