// Values, listeners and bulk loads of the dataset functions: everything that hands over several values at once.
#include <array>
#include <bit>

#include "core/Trim.h"
#include "dataset/store/Cell.h"
#include "package/c/DatasetHandles.h"

using namespace kiv::c;

namespace kiv::c {
namespace {

/// How C has a value; bytes stay borrowed.
struct ForC {
  KivFieldValue operator()(Null) const noexcept { return Of(KIV_VALUE_NULL); }
  KivFieldValue operator()(bool value) const noexcept { return Integer(KIV_VALUE_BOOLEAN, value ? 1 : 0); }
  KivFieldValue operator()(std::int64_t value) const noexcept { return Integer(KIV_VALUE_INTEGER, value); }
  KivFieldValue operator()(Currency value) const noexcept { return Integer(KIV_VALUE_CURRENCY, value.Raw()); }
  KivFieldValue operator()(double value) const noexcept { return Number(KIV_VALUE_DOUBLE, value); }
  KivFieldValue operator()(DateTime value) const noexcept { return Number(KIV_VALUE_DATE_TIME, value.Days()); }
  KivFieldValue operator()(TextView value) const noexcept { return Bytes(KIV_VALUE_TEXT, value); }
  KivFieldValue operator()(std::u16string_view value) const noexcept { return Bytes(KIV_VALUE_WIDE_TEXT, value); }
  KivFieldValue operator()(BytesView value) const noexcept { return Bytes(KIV_VALUE_BYTES, value); }
  KivFieldValue operator()(const Guid& value) const noexcept {
    KivFieldValue made = Of(KIV_VALUE_GUID);
    made.guid = std::bit_cast<KivGuid>(value);
    return made;
  }

 private:
  static KivFieldValue Of(std::int32_t kind) noexcept {
    KivFieldValue made{};
    made.kind = kind;
    return made;
  }
  static KivFieldValue Integer(std::int32_t kind, std::int64_t value) noexcept {
    KivFieldValue made = Of(kind);
    made.integer = value;
    return made;
  }
  static KivFieldValue Number(std::int32_t kind, double value) noexcept {
    KivFieldValue made = Of(kind);
    made.number = value;
    return made;
  }
  template <class Units>
  static KivFieldValue Bytes(std::int32_t kind, const Units& units) noexcept {
    KivFieldValue made = Of(kind);
    made.units = units.data();
    made.size = units.size();
    return made;
  }
};

}  // namespace

KivFieldValue FieldValueOf(const ValueView& value) {
  return std::visit(ForC(), value.Get());
}

GivenValues::GivenValues(const KivFieldValue* values, std::size_t count, const char* name) {
  PointerArgument(values, name);
  views_.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    views_.push_back(ViewOf(values[i], name));
  }
}

ValueView GivenValues::ViewOf(const KivFieldValue& value, const char* name) {
  switch (value.kind) {
    case KIV_VALUE_NULL:
      return Null{};
    case KIV_VALUE_BOOLEAN:
      return value.integer != 0;
    case KIV_VALUE_INTEGER:
      return value.integer;
    case KIV_VALUE_CURRENCY:
      return Currency::FromRaw(value.integer);
    case KIV_VALUE_DOUBLE:
      return value.number;
    case KIV_VALUE_DATE_TIME:
      return DateTime(value.number);
    case KIV_VALUE_TEXT:
      return TextArgument(static_cast<const char*>(value.units), value.size, name);
    case KIV_VALUE_WIDE_TEXT:
      return std::u16string_view(
          wides_.emplace_back(WideArgument(static_cast<const std::uint16_t*>(value.units), value.size, name)));
    case KIV_VALUE_GUID:
      return std::bit_cast<Guid>(value.guid);
    case KIV_VALUE_BYTES:
      return BytesArgument(static_cast<const std::uint8_t*>(value.units), value.size, name);
    default:
      throw ArgumentError(Text(name) + ": valoare necunoscuta");
  }
}

FilterParameters ParametersOf(TextView names, const KivFieldValue* values, std::size_t count) {
  FilterParameters parameters;
  if (count == 0 && names.empty()) {
    return parameters;
  }
  const GivenValues given(values, count, "values");
  for (const ValueView& value : given.All()) {
    const std::size_t comma = names.find(',');
    const TextView name = Trim(names.substr(0, comma));
    if (name.empty()) {
      throw ArgumentError("names: lipseste numele unui parametru");
    }
    parameters.push_back({Text(name), store::OwnedValue(value)});
    names = comma == TextView::npos ? TextView() : names.substr(comma + 1);
  }
  if (!names.empty()) {
    throw ArgumentError("names: un parametru nu are valoare");
  }
  return parameters;
}

void DatasetCallbacks::BeforePost(const Proposal& proposal) {
  if (before_ == nullptr) {
    return;
  }
  const std::size_t count = dataset_.GetSchema().Fields().size();
  std::vector<KivFieldValue> values;
  std::vector<std::uint8_t> changed;
  for (std::size_t field = 0; field < count; ++field) {
    values.push_back(FieldValueOf(proposal.Get(field)));
    changed.push_back(proposal.IsChanged(field) ? 1 : 0);
  }
  const KivProposal told{static_cast<std::int32_t>(proposal.Kind()), static_cast<std::uint32_t>(proposal.Row()),
                         values.data(), changed.data(), count};
  if (before_(context_, &told) != KIV_OK) {
    throw Error("Dataset \"" + Text(dataset_.Name()) + "\": modificarea a fost refuzata de aplicatie");
  }
}

void DatasetCallbacks::Changed(const ChangeNotice& notice) noexcept {
  if (changed_ != nullptr) {
    const std::int32_t kind = notice.kind ? static_cast<std::int32_t>(*notice.kind) : KIV_CHANGE_ALL;
    const std::uint32_t row = notice.kind ? static_cast<std::uint32_t>(notice.row) : KIV_NO_ROW;
    changed_(context_, kind, row, notice.fields.data(), notice.fields.size());
  }
}

}  // namespace kiv::c

namespace {

kiv::Loader& LoaderOf(KivDataset* dataset) {
  KivDataset& loading = KIV_REQUIRED(dataset);
  if (!loading.loader) {
    throw ArgumentError("dataset: nu este nicio incarcare in curs");
  }
  return *loading.loader;
}

}  // namespace

extern "C" {

KivAnswer KivDatasetFind(const KivDataset* dataset, const KivFieldValue* key, size_t count, uint32_t* row) {
  return GiveAnswer([=] {
    const kiv::Dataset& rows = KIV_REQUIRED(dataset).Own();
    std::uint32_t& result = KIV_REQUIRED(row);
    const auto found = rows.Find(GivenValues(key, count, "key").All());
    if (found) {
      result = static_cast<std::uint32_t>(*found);
    }
    return found.has_value();
  });
}

KivStatus KivDatasetBeginLoad(KivDataset* dataset) {
  return Run([=] {
    KivDataset& loading = KIV_REQUIRED(dataset);
    if (loading.loader) {
      throw ArgumentError("dataset: o incarcare este in curs");
    }
    loading.loader.emplace(loading.Own());
  });
}

KivStatus KivDatasetLoadRow(KivDataset* dataset, const KivFieldValue* values, size_t count) {
  return Run([=] {
    const GivenValues given(values, count, "values");
    LoaderOf(dataset).Add(given.All());
  });
}

KivStatus KivDatasetEndLoad(KivDataset* dataset) {
  return Run([=] {
    LoaderOf(dataset).Finish();
    dataset->loader.reset();
  });
}

KivStatus KivDatasetCancelLoad(KivDataset* dataset) {
  return Run([=] { KIV_REQUIRED(dataset).loader.reset(); });
}

KivStatus KivDatasetAddListener(KivDataset* dataset, KivDatasetBeforePost before, KivDatasetChanged changed,
                                void* context, size_t* listener) {
  return Run([=] {
    KivDataset& told = KIV_REQUIRED(dataset);
    kiv::Dataset& rows = told.Own();
    std::size_t& result = KIV_REQUIRED(listener);
    told.listeners.push_back({std::make_unique<DatasetCallbacks>(rows, before, changed, context), false});
    rows.AddListener(*told.listeners.back().callbacks);
    told.listeners.back().isOn = true;
    result = told.listeners.size() - 1;
  });
}

KivStatus KivDatasetRemoveListener(KivDataset* dataset, size_t listener) {
  return Run([=] {
    KivDataset& told = KIV_REQUIRED(dataset);
    if (listener >= told.listeners.size() || !told.listeners[listener].isOn) {
      throw ArgumentError("listener: valoare necunoscuta");
    }
    told.Own().RemoveListener(*told.listeners[listener].callbacks);
    told.listeners[listener].isOn = false;
  });
}

KivStatus KivDatasetBeginUpdate(KivDataset* dataset) {
  return Run([=] { KIV_REQUIRED(dataset).Own().BeginUpdate(); });
}

KivStatus KivDatasetEndUpdate(KivDataset* dataset) {
  return Run([=] { KIV_REQUIRED(dataset).Own().EndUpdate(); });
}

}  // extern "C"
