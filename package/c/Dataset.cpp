#include <bit>
#include <new>
#include <optional>

#include "dataset/store/Cell.h"
#include "dataset/store/SchemaData.h"
#include "package/c/DatasetKinds.h"

using namespace kiv::c;
using kiv::Value;

namespace {

constexpr bool IsOneOf(std::int32_t value, std::int32_t last) noexcept {
  return value >= 0 && value <= last;
}

/// Notes a value of the open row, which it opens if none is.
void Set(KivDataset& dataset, std::uint32_t row, std::size_t field, Value value) {
  static_cast<void>(dataset.Own().FieldAt(field));
  if (!dataset.open) {
    static_cast<void>(dataset.Own().State(kiv::RowId{row}));
    dataset.open.emplace(KivDataset::Open{row, {}});
  } else if (dataset.open->row != row) {
    throw ArgumentError("row: alt rand este deschis");
  }
  dataset.open->values.emplace_back(field, std::move(value));
}

std::uint32_t Post(KivDataset& dataset) {
  if (!dataset.open) {
    throw ArgumentError("dataset: niciun rand nu este deschis");
  }
  std::vector<kiv::FieldValue> values;
  for (const auto& [field, value] : dataset.open->values) {
    values.push_back({dataset.View().FieldAt(field), value});
  }
  std::uint32_t row = dataset.open->row;
  if (row == KIV_NO_ROW) {
    row = static_cast<std::uint32_t>(dataset.Own().Insert(values));
  } else {
    dataset.Own().Update(kiv::RowId{row}, values);
  }
  dataset.open.reset();
  return row;
}

Value ValueOf(const KivDataset& dataset, std::uint32_t row, std::size_t field) {
  return dataset.View().Get(kiv::RowId{row}, dataset.View().FieldAt(field));
}

KivAnswer GiveRow(std::optional<kiv::RowId> found, std::uint32_t& row) {
  if (found) {
    row = static_cast<std::uint32_t>(*found);
  }
  return found ? 1 : 0;
}

}  // namespace

extern "C" {

KivSchema* KivSchemaNew(void) {
  return new (std::nothrow) KivSchema;
}

void KivSchemaFree(KivSchema* schema) {
  delete schema;
}

KivStatus KivSchemaAddField(KivSchema* schema, const char* name, size_t length, int32_t type, int32_t size,
                            int32_t flags) {
  return Run([=] {
    auto& fields = KIV_REQUIRED(schema).fields;
    if (fields.size() >= kiv::store::kMostFields) {
      throw ArgumentError("schema: mai multe campuri nu incap");
    }
    if (!IsOneOf(type, KIV_FIELD_AUTO_INC)) {
      throw ArgumentError("type: valoare necunoscuta");
    }
    if (!IsOneOf(flags, 127)) {
      throw ArgumentError("flags: valoare necunoscuta");
    }
    fields.emplace_back(kiv::Text(KIV_TEXT(name, length)), static_cast<kiv::FieldType>(type), size,
                        static_cast<kiv::FieldFlags>(flags % KIV_FLAG_NO_CASE));
    fields.back().collation = static_cast<kiv::Collation>(flags / KIV_FLAG_NO_CASE);
  });
}

KivStatus KivSchemaSetDefault(KivSchema* schema, size_t field, const KivFieldValue* value) {
  return Run([=] {
    auto& fields = KIV_REQUIRED(schema).fields;
    const GivenValues given(value, 1, "value");
    if (field >= fields.size()) {
      throw ArgumentError("field: valoare necunoscuta");
    }
    fields[field].defaultValue = kiv::store::OwnedValue(given.All().front());
  });
}

KivStatus KivDatasetNew(const char* name, size_t length, const KivSchema* schema, KivDataset** dataset) {
  return Run([=] {
    const kiv::TextView given = KIV_TEXT(name, length);
    const auto& fields = KIV_REQUIRED(schema).fields;
    KivDataset*& result = KIV_REQUIRED(dataset);
    result = new KivDataset(kiv::Dataset(given, kiv::Schema(fields)));
  });
}

void KivDatasetFree(KivDataset* dataset) {
  delete dataset;
}

KivStatus KivDatasetTakeSnapshot(KivDataset* dataset, KivDataset** snapshot) {
  return Run([=] {
    KivDataset*& result = KIV_REQUIRED(snapshot);
    result = new KivDataset(KIV_REQUIRED(dataset).Own().TakeSnapshot());
  });
}

KivLength KivDatasetField(const KivDataset* dataset, const char* name, size_t length) {
  return GiveLength([=] { return KIV_REQUIRED(dataset).View().Field(KIV_TEXT(name, length)).Index(); });
}

KivLength KivDatasetRowCount(const KivDataset* dataset) {
  return GiveLength([=] { return KIV_REQUIRED(dataset).View().RowCount(); });
}

KivAnswer KivDatasetNextRow(const KivDataset* dataset, uint32_t row, uint32_t* next) {
  return GiveAnswer([=] {
    const kiv::DatasetView& rows = KIV_REQUIRED(dataset).View();
    std::uint32_t& result = KIV_REQUIRED(next);
    return GiveRow(rows.NextRow(row == KIV_NO_ROW ? std::nullopt : std::optional(kiv::RowId{row})), result) != 0;
  });
}

KivStatus KivDatasetState(const KivDataset* dataset, uint32_t row, int32_t* state) {
  return Run([=] {
    std::int32_t& result = KIV_REQUIRED(state);
    result = static_cast<std::int32_t>(KIV_REQUIRED(dataset).View().State(kiv::RowId{row}));
  });
}

KivAnswer KivDatasetFindInt64(const KivDataset* dataset, int64_t key, uint32_t* row) {
  return GiveAnswer([=] {
    std::uint32_t& result = KIV_REQUIRED(row);
    return GiveRow(KIV_REQUIRED(dataset).Own().Find(key), result) != 0;
  });
}

KivAnswer KivDatasetFindText(const KivDataset* dataset, const char* key, size_t length, uint32_t* row) {
  return GiveAnswer([=] {
    std::uint32_t& result = KIV_REQUIRED(row);
    return GiveRow(KIV_REQUIRED(dataset).Own().Find({KIV_TEXT(key, length)}), result) != 0;
  });
}

KivStatus KivDatasetInsert(KivDataset* dataset) {
  return Run([=] {
    KivDataset& opened = KIV_REQUIRED(dataset);
    static_cast<void>(opened.Own());
    if (opened.open) {
      throw ArgumentError("dataset: alt rand este deschis");
    }
    opened.open.emplace(KivDataset::Open{KIV_NO_ROW, {}});
  });
}

KivStatus KivDatasetSetNull(KivDataset* dataset, uint32_t row, size_t field) {
  return Run([=] { Set(KIV_REQUIRED(dataset), row, field, kiv::Null{}); });
}

KivStatus KivDatasetSetBoolean(KivDataset* dataset, uint32_t row, size_t field, int32_t value) {
  return Run([=] { Set(KIV_REQUIRED(dataset), row, field, value != 0); });
}

KivStatus KivDatasetSetInt64(KivDataset* dataset, uint32_t row, size_t field, int64_t value) {
  return Run([=] { Set(KIV_REQUIRED(dataset), row, field, value); });
}

KivStatus KivDatasetSetDouble(KivDataset* dataset, uint32_t row, size_t field, double value) {
  return Run([=] { Set(KIV_REQUIRED(dataset), row, field, value); });
}

KivStatus KivDatasetSetCurrency(KivDataset* dataset, uint32_t row, size_t field, int64_t value) {
  return Run([=] { Set(KIV_REQUIRED(dataset), row, field, kiv::Currency::FromRaw(value)); });
}

KivStatus KivDatasetSetDateTime(KivDataset* dataset, uint32_t row, size_t field, double days) {
  return Run([=] { Set(KIV_REQUIRED(dataset), row, field, kiv::DateTime(days)); });
}

KivStatus KivDatasetSetText(KivDataset* dataset, uint32_t row, size_t field, const char* text, size_t length) {
  return Run([=] { Set(KIV_REQUIRED(dataset), row, field, kiv::Text(KIV_TEXT(text, length))); });
}

KivStatus KivDatasetSetWideText(KivDataset* dataset, uint32_t row, size_t field, const uint16_t* text, size_t length) {
  return Run([=] { Set(KIV_REQUIRED(dataset), row, field, KIV_WIDE(text, length)); });
}

KivStatus KivDatasetSetGuid(KivDataset* dataset, uint32_t row, size_t field, const KivGuid* value) {
  return Run([=] { Set(KIV_REQUIRED(dataset), row, field, std::bit_cast<kiv::Guid>(KIV_REQUIRED(value))); });
}

KivStatus KivDatasetSetBytes(KivDataset* dataset, uint32_t row, size_t field, const uint8_t* bytes, size_t size) {
  return Run([=] {
    const kiv::BytesView given = BytesArgument(bytes, size, "bytes");
    Set(KIV_REQUIRED(dataset), row, field, kiv::Bytes(given.begin(), given.end()));
  });
}

KivStatus KivDatasetPost(KivDataset* dataset, uint32_t* posted) {
  return Run([=] {
    const std::uint32_t row = Post(KIV_REQUIRED(dataset));
    if (posted != nullptr) {
      *posted = row;
    }
  });
}

KivStatus KivDatasetCancel(KivDataset* dataset) {
  return Run([=] { KIV_REQUIRED(dataset).open.reset(); });
}

KivStatus KivDatasetDelete(KivDataset* dataset, uint32_t row) {
  return Run([=] { KIV_REQUIRED(dataset).Own().Delete(kiv::RowId{row}); });
}

KivAnswer KivDatasetIsNull(const KivDataset* dataset, uint32_t row, size_t field) {
  return GiveAnswer([=] {
    const kiv::DatasetView& rows = KIV_REQUIRED(dataset).View();
    return rows.IsNull(kiv::RowId{row}, rows.FieldAt(field));
  });
}

KivAnswer KivDatasetGetBoolean(const KivDataset* dataset, uint32_t row, size_t field, int32_t* value) {
  return GiveValue<bool>(value, [=] { return ValueOf(KIV_REQUIRED(dataset), row, field); });
}

KivAnswer KivDatasetGetInt64(const KivDataset* dataset, uint32_t row, size_t field, int64_t* value) {
  return GiveValue<std::int64_t>(value, [=] { return ValueOf(KIV_REQUIRED(dataset), row, field); });
}

KivAnswer KivDatasetGetDouble(const KivDataset* dataset, uint32_t row, size_t field, double* value) {
  return GiveValue<double>(value, [=] { return ValueOf(KIV_REQUIRED(dataset), row, field); });
}

KivAnswer KivDatasetGetCurrency(const KivDataset* dataset, uint32_t row, size_t field, int64_t* value) {
  return GiveValue<kiv::Currency>(value, [=] { return ValueOf(KIV_REQUIRED(dataset), row, field); });
}

KivAnswer KivDatasetGetDateTime(const KivDataset* dataset, uint32_t row, size_t field, double* value) {
  return GiveValue<kiv::DateTime>(value, [=] { return ValueOf(KIV_REQUIRED(dataset), row, field); });
}

KivAnswer KivDatasetGetGuid(const KivDataset* dataset, uint32_t row, size_t field, KivGuid* value) {
  return GiveValue<kiv::Guid>(value, [=] { return ValueOf(KIV_REQUIRED(dataset), row, field); });
}

KivLength KivDatasetGetText(const KivDataset* dataset, uint32_t row, size_t field, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] {
    const kiv::DatasetView& rows = KIV_REQUIRED(dataset).View();
    return rows.GetText(kiv::RowId{row}, rows.FieldAt(field));
  });
}

KivLength KivDatasetGetWideText(const KivDataset* dataset, uint32_t row, size_t field, uint16_t* buffer,
                                size_t capacity) {
  return GiveText(buffer, capacity, [=] {
    const kiv::DatasetView& rows = KIV_REQUIRED(dataset).View();
    return rows.GetWideText(kiv::RowId{row}, rows.FieldAt(field));
  });
}

KivLength KivDatasetGetBytes(const KivDataset* dataset, uint32_t row, size_t field, uint8_t* buffer, size_t capacity) {
  return GiveLength([=] {
    KIV_BUFFER(buffer, capacity);
    const kiv::DatasetView& rows = KIV_REQUIRED(dataset).View();
    return CopyBytes(rows.GetBytes(kiv::RowId{row}, rows.FieldAt(field)), buffer, capacity);
  });
}

KivLength KivDatasetChangeCount(const KivDataset* dataset) {
  return GiveLength([=] { return KIV_REQUIRED(dataset).View().ChangeCount(); });
}

KivStatus KivDatasetForEachChange(KivDataset* dataset, KivChangeVisitor visitor, void* context) {
  return Run([=] {
    kiv::Dataset& walked = KIV_REQUIRED(dataset).Own();
    if (visitor == nullptr) {
      throw ArgumentError("visitor: pointer nul");
    }
    std::vector<std::uint16_t> fields;
    std::vector<KivFieldValue> before;
    walked.Changes().ForEach([&](const kiv::ChangeRecord& change) {
      fields.clear();
      before.clear();
      for (const kiv::ChangeRecord::Field& field : change.fields) {
        fields.push_back(static_cast<std::uint16_t>(field.index));
        before.push_back(FieldValueOf(field.before));
      }
      const KivChangeRecord told{static_cast<std::int32_t>(change.kind), static_cast<std::uint32_t>(change.row),
                                 fields.data(), before.data(), fields.size()};
      if (visitor(context, &told) != KIV_OK) {
        throw HostFailure("visitor: parcurgerea a fost oprita");
      }
    });
  });
}

KivStatus KivDatasetSetMark(KivDataset* dataset, size_t* mark) {
  return Run([=] {
    std::size_t& result = KIV_REQUIRED(mark);
    KivDataset& marked = KIV_REQUIRED(dataset);
    marked.marks.push_back(marked.Own().Changes().SetMark());
    result = marked.marks.size() - 1;
  });
}

KivStatus KivDatasetRollbackTo(KivDataset* dataset, size_t mark) {
  return Run([=] {
    KivDataset& marked = KIV_REQUIRED(dataset);
    if (mark >= marked.marks.size()) {
      throw ArgumentError("mark: valoare necunoscuta");
    }
    marked.Own().Changes().RollbackTo(marked.marks[mark]);
  });
}

KivAnswer KivDatasetUndoLast(KivDataset* dataset) {
  return GiveAnswer([=] { return KIV_REQUIRED(dataset).Own().Changes().UndoLast(); });
}

KivStatus KivDatasetRevertRow(KivDataset* dataset, uint32_t row) {
  return Run([=] { KIV_REQUIRED(dataset).Own().Changes().RevertRow(kiv::RowId{row}); });
}

KivStatus KivDatasetCancelChanges(KivDataset* dataset) {
  return Run([=] { KIV_REQUIRED(dataset).Own().Changes().CancelChanges(); });
}

KivStatus KivDatasetAcceptChanges(KivDataset* dataset) {
  return Run([=] { KIV_REQUIRED(dataset).Own().Changes().AcceptChanges(); });
}

KivStatus KivDatasetCompact(KivDataset* dataset) {
  return Run([=] {
    KivDataset& compacted = KIV_REQUIRED(dataset);
    if (compacted.open) {
      throw ArgumentError("dataset: un rand este deschis");  // whose number would be another's
    }
    compacted.Own().Compact();
  });
}

}  // extern "C"
