#include "kivtools/c/Strings.h"

#include <limits>

#include "kivtools/WinUtil/Strings.h"
#include "package/c/Abi.h"
#include "package/c/StringList.h"

using namespace kiv::c;

namespace {

kiv::Variant VariantArgument(const KivVariant* value, const char* name) {
  const KivVariant& given = PointerArgument(value, name);
  switch (given.kind) {
    case KIV_VARIANT_NULL:
      return kiv::Null{};
    case KIV_VARIANT_BOOLEAN:
      return given.integer != 0;
    case KIV_VARIANT_INTEGER:
      return given.integer;
    case KIV_VARIANT_DOUBLE:
      return given.number;
    case KIV_VARIANT_CURRENCY:
      return kiv::Currency::FromRaw(given.integer);
    case KIV_VARIANT_DATE_TIME:
      return kiv::DateTime(given.number);
    case KIV_VARIANT_TEXT:
      return kiv::Text(TextArgument(given.text, given.length, name));
    default:
      throw ArgumentError(kiv::Text(name) + ": felul " + std::to_string(given.kind) + " nu exista");
  }
}

}  // namespace

extern "C" {

KivStatus KivExplode(const char* separators, size_t separatorsLength, const char* text, size_t length, int32_t limit,
                     KivStringList* pieces) {
  return Run([=] {
    kiv::StringList& result = PointerArgument(pieces, "KivExplode: pieces").items;
    result = kiv::Explode(TextArgument(separators, separatorsLength, "KivExplode: separators"),
                          TextArgument(text, length, "KivExplode: text"), limit);
  });
}

KivStatus KivSplitTextOnSeparator(const char* text, size_t length, const char* separators, size_t separatorsLength,
                                  KivStringList* list) {
  return Run([=] {
    kiv::StringList& result = PointerArgument(list, "KivSplitTextOnSeparator: list").items;
    kiv::SplitTextOnSeparator(TextArgument(text, length, "KivSplitTextOnSeparator: text"),
                              TextArgument(separators, separatorsLength, "KivSplitTextOnSeparator: separators"),
                              result);
  });
}

KivLength KivStringHash(const char* text, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::StringHash(TextArgument(text, length, "KivStringHash: text")); });
}

KivLength KivRemoveDualSlshPath(const char* path, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity,
                  [=] { return kiv::RemoveDualSlshPath(TextArgument(path, length, "KivRemoveDualSlshPath: path")); });
}

KivStatus KivSmartRound(double value, double* result) {
  return Run([=] { PointerArgument(result, "KivSmartRound: result") = kiv::SmartRound(value); });
}

KivStatus KivSmartRoundTo(double value, int32_t digit, double* result) {
  return Run([=] {
    double& rounded = PointerArgument(result, "KivSmartRoundTo: result");
    using Digits = std::numeric_limits<std::int8_t>;
    if (digit < Digits::min() || digit > Digits::max()) {
      throw ArgumentError("KivSmartRoundTo: digit " + std::to_string(digit) + " nu este in -128..127");
    }
    rounded = kiv::SmartRoundTo(value, static_cast<std::int8_t>(digit));
  });
}

int32_t KivTrimestruLuna(int32_t month) {
  return kiv::TrimestruLuna(month);
}

KivStatus KivVarToDateDef(const KivVariant* value, double defaultDays, double* days) {
  return Run([=] {
    double& result = PointerArgument(days, "KivVarToDateDef: days");
    result = kiv::VarToDateDef(VariantArgument(value, "KivVarToDateDef: value"), kiv::DateTime(defaultDays)).Days();
  });
}

KivStatus KivVarToIntDef(const KivVariant* value, int32_t defaultValue, int32_t* result) {
  return Run([=] {
    int32_t& integer = PointerArgument(result, "KivVarToIntDef: result");
    integer = kiv::VarToIntDef(VariantArgument(value, "KivVarToIntDef: value"), defaultValue);
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
  return Run([=] { kiv::CopiazaTextInClipboard(TextArgument(text, length, "KivCopiazaTextInClipboard: text")); });
}

}  // extern "C"
