#include "package/c/DatasetKinds.h"

using namespace kiv::c;
using kiv::Value;

namespace {

Value ValueOf(const KivDelta& delta, std::uint32_t ticket, std::size_t field, std::int32_t original) {
  return original != 0 ? delta.delta.Original(ticket, field) : delta.delta.Current(ticket, field);
}

}  // namespace

extern "C" {

KivStatus KivDatasetMakeDelta(KivDataset* dataset, KivDelta** delta) {
  return Run([=] {
    KivDelta*& result = KIV_REQUIRED(delta);
    result = new KivDelta{KIV_REQUIRED(dataset).Own().Changes().MakeDelta()};
  });
}

void KivDeltaFree(KivDelta* delta) {
  delete delta;
}

KivLength KivDeltaCount(const KivDelta* delta) {
  return GiveLength([=] { return KIV_REQUIRED(delta).delta.Count(); });
}

KivStatus KivDeltaId(const KivDelta* delta, KivGuid* id) {
  return Run([=] {
    KivGuid& result = KIV_REQUIRED(id);
    result = ForC(KIV_REQUIRED(delta).delta.Id());
  });
}

KivStatus KivDeltaTicket(const KivDelta* delta, uint32_t ticket, int32_t* kind, uint32_t* row) {
  return Run([=] {
    const kiv::Delta& changes = KIV_REQUIRED(delta).delta;
    const auto number = static_cast<std::uint32_t>(changes.Row(ticket));
    if (kind != nullptr) {
      *kind = static_cast<std::int32_t>(changes.Kind(ticket));
    }
    if (row != nullptr) {
      *row = number;
    }
  });
}

KivAnswer KivDeltaIsChanged(const KivDelta* delta, uint32_t ticket, size_t field) {
  return GiveAnswer([=] { return KIV_REQUIRED(delta).delta.IsChanged(ticket, field); });
}

KivAnswer KivDeltaHasOriginal(const KivDelta* delta, uint32_t ticket, size_t field) {
  return GiveAnswer([=] { return KIV_REQUIRED(delta).delta.HasOriginal(ticket, field); });
}

KivAnswer KivDeltaGetBoolean(const KivDelta* delta, uint32_t ticket, size_t field, int32_t original, int32_t* value) {
  return GiveValue<bool>(value, [=] { return ValueOf(KIV_REQUIRED(delta), ticket, field, original); });
}

KivAnswer KivDeltaGetInt64(const KivDelta* delta, uint32_t ticket, size_t field, int32_t original, int64_t* value) {
  return GiveValue<std::int64_t>(value, [=] { return ValueOf(KIV_REQUIRED(delta), ticket, field, original); });
}

KivAnswer KivDeltaGetDouble(const KivDelta* delta, uint32_t ticket, size_t field, int32_t original, double* value) {
  return GiveValue<double>(value, [=] { return ValueOf(KIV_REQUIRED(delta), ticket, field, original); });
}

KivAnswer KivDeltaGetCurrency(const KivDelta* delta, uint32_t ticket, size_t field, int32_t original, int64_t* value) {
  return GiveValue<kiv::Currency>(value, [=] { return ValueOf(KIV_REQUIRED(delta), ticket, field, original); });
}

KivAnswer KivDeltaGetDateTime(const KivDelta* delta, uint32_t ticket, size_t field, int32_t original, double* value) {
  return GiveValue<kiv::DateTime>(value, [=] { return ValueOf(KIV_REQUIRED(delta), ticket, field, original); });
}

KivAnswer KivDeltaGetGuid(const KivDelta* delta, uint32_t ticket, size_t field, int32_t original, KivGuid* value) {
  return GiveValue<kiv::Guid>(value, [=] { return ValueOf(KIV_REQUIRED(delta), ticket, field, original); });
}

KivLength KivDeltaGetText(const KivDelta* delta, uint32_t ticket, size_t field, int32_t original, char* buffer,
                          size_t capacity) {
  return GiveText(buffer, capacity,
                  [=] { return BytesOf<kiv::Text>(ValueOf(KIV_REQUIRED(delta), ticket, field, original)); });
}

KivLength KivDeltaGetWideText(const KivDelta* delta, uint32_t ticket, size_t field, int32_t original, uint16_t* buffer,
                              size_t capacity) {
  return GiveText(buffer, capacity,
                  [=] { return BytesOf<kiv::WideText>(ValueOf(KIV_REQUIRED(delta), ticket, field, original)); });
}

KivLength KivDeltaGetBytes(const KivDelta* delta, uint32_t ticket, size_t field, int32_t original, uint8_t* buffer,
                           size_t capacity) {
  return GiveLength([=] {
    KIV_BUFFER(buffer, capacity);
    return CopyBytes(BytesOf<kiv::Bytes>(ValueOf(KIV_REQUIRED(delta), ticket, field, original)), buffer, capacity);
  });
}

}  // extern "C"
