#include "kivtools/c/Variants.h"

#include "kivtools/WinUtil/Variants.h"
#include "package/c/Abi.h"

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

}  // extern "C"
