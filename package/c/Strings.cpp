#include "kivtools/c/Strings.h"

#include <limits>

#include "kivtools/WinUtil/Strings.h"
#include "package/c/Abi.h"
#include "package/c/StringList.h"

using namespace kiv::c;

namespace {

kiv::Variant ToVariant(const KivVariant& value) {
  switch (value.kind) {
    case KIV_VARIANT_NULL:
      return kiv::Null{};
    case KIV_VARIANT_BOOLEAN:
      return value.integer != 0;
    case KIV_VARIANT_INTEGER:
      return value.integer;
    case KIV_VARIANT_DOUBLE:
      return value.number;
    case KIV_VARIANT_CURRENCY:
      return kiv::Currency::FromRaw(value.integer);
    case KIV_VARIANT_DATE_TIME:
      return kiv::DateTime(value.number);
    case KIV_VARIANT_TEXT:
      return kiv::Text(KIV_TEXT(value.text, value.length));
    default:
      throw ArgumentError("value.kind " + std::to_string(value.kind) + " nu exista");
  }
}

}  // namespace

extern "C" {

KivStatus KivExplode(const char* separators, size_t separatorsLength, const char* text, size_t length, int32_t limit,
                     KivStringList* pieces) {
  return Run([=] {
    kiv::StringList& result = KIV_REQUIRED(pieces).items;
    result = kiv::Explode(KIV_TEXT(separators, separatorsLength), KIV_TEXT(text, length), limit);
  });
}

KivStatus KivSplitTextOnSeparator(const char* text, size_t length, const char* separators, size_t separatorsLength,
                                  KivStringList* list) {
  return Run([=] {
    kiv::StringList& result = KIV_REQUIRED(list).items;
    kiv::SplitTextOnSeparator(KIV_TEXT(text, length), KIV_TEXT(separators, separatorsLength), result);
  });
}

KivLength KivStringHash(const char* text, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::StringHash(KIV_TEXT(text, length)); });
}

KivLength KivRemoveDualSlshPath(const char* path, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::RemoveDualSlshPath(KIV_TEXT(path, length)); });
}

KivStatus KivSmartRound(double value, double* result) {
  return Run([=] { KIV_REQUIRED(result) = kiv::SmartRound(value); });
}

KivStatus KivSmartRoundTo(double value, int32_t digit, double* result) {
  return Run([=] {
    double& rounded = KIV_REQUIRED(result);
    using Digits = std::numeric_limits<std::int8_t>;
    if (digit < Digits::min() || digit > Digits::max()) {
      throw ArgumentError("digit " + std::to_string(digit) + " nu este in -128..127");
    }
    rounded = kiv::SmartRoundTo(value, static_cast<std::int8_t>(digit));
  });
}

int32_t KivTrimestruLuna(int32_t month) {
  return kiv::TrimestruLuna(month);
}

KivStatus KivVarToDateDef(const KivVariant* value, double defaultDays, double* days) {
  return Run([=] {
    double& result = KIV_REQUIRED(days);
    result = kiv::VarToDateDef(ToVariant(KIV_REQUIRED(value)), kiv::DateTime(defaultDays)).Days();
  });
}

KivStatus KivVarToIntDef(const KivVariant* value, int32_t defaultValue, int32_t* result) {
  return Run([=] {
    int32_t& integer = KIV_REQUIRED(result);
    integer = kiv::VarToIntDef(ToVariant(KIV_REQUIRED(value)), defaultValue);
  });
}

int32_t KivMaxInt(int32_t a, int32_t b) {
  return kiv::MaxInt(a, b);
}

int32_t KivMinInt(int32_t a, int32_t b) {
  return kiv::MinInt(a, b);
}

KivLength KivLogOnUserName(char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [] { return kiv::LogOnUserName(); });
}

KivAnswer KivEsteWindowsVista(void) {
  return GiveAnswer([] { return kiv::EsteWindowsVista(); });
}

KivStatus KivCopiazaTextInClipboard(const char* text, size_t length) {
  return Run([=] { kiv::CopiazaTextInClipboard(KIV_TEXT(text, length)); });
}

}  // extern "C"
