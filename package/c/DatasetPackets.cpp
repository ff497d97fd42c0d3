#include "kivtools/c/DatasetPackets.h"

#include "dataset/query/CalculatedColumns.h"
#include "kivtools/dataset/Journal.h"
#include "kivtools/dataset/Packet.h"
#include "package/c/Abi.h"
#include "package/c/DatasetHandles.h"
#include "platform/Paths.h"

using namespace kiv::c;

struct KivJournal {
  kiv::Journal journal;
};

namespace {

const kiv::FieldDef& FieldOf(const kiv::Schema& schema, std::size_t field) {
  if (field >= schema.Fields().size()) {
    throw kiv::ListIndexError("field: campul nu exista");
  }
  return schema.Fields()[field];
}

/// Of a calculated column too.
const kiv::FieldDef& FieldOf(const kiv::DatasetView& rows, std::size_t field) {
  return kiv::query::FieldAt(rows.GetContents(), rows.FieldAt(field).Index());
}

void GiveField(const kiv::FieldDef& definition, std::int32_t* type, std::int32_t* size, std::int32_t* flags) {
  const auto give = [](std::int32_t* into, std::int32_t value) {
    if (into != nullptr) {
      *into = value;
    }
  };
  give(type, static_cast<std::int32_t>(definition.type));
  give(size, definition.size);
  give(flags, static_cast<std::int32_t>(definition.flags) +
                  static_cast<std::int32_t>(definition.collation) * KIV_FLAG_NO_CASE);
}

kiv::Value ValueOf(const KivDelta& delta, std::uint32_t ticket, std::size_t field, std::int32_t original) {
  return original != 0 ? delta.delta.Original(ticket, field) : delta.delta.Current(ticket, field);
}

}  // namespace

extern "C" {

KivStatus KivPacketContent(const char* path, size_t length, int32_t* content) {
  return Run([=] {
    std::int32_t& result = KIV_REQUIRED(content);
    result = static_cast<std::int32_t>(kiv::ContentOf(kiv::platform::PathFromText(KIV_TEXT(path, length))));
  });
}

KivStatus KivDatasetSave(const KivDataset* dataset, const char* path, size_t length, int32_t options) {
  return Run([=] {
    kiv::SaveBinary(KIV_REQUIRED(dataset).View(), kiv::platform::PathFromText(KIV_TEXT(path, length)),
                    SaveOptionsOf(options));
  });
}

KivStatus KivDatasetLoad(const char* path, size_t length, KivDataset** dataset, uint64_t* replayed,
                         uint64_t* lostBytes) {
  return Run([=] {
    KivDataset*& result = KIV_REQUIRED(dataset);
    kiv::LoadReport report;
    result = new KivDataset(kiv::LoadBinary(kiv::platform::PathFromText(KIV_TEXT(path, length)), {}, &report));
    if (replayed != nullptr) {
      *replayed = report.replayed;
    }
    if (lostBytes != nullptr) {
      *lostBytes = report.lostBytes;
    }
  });
}

KivStatus KivDatasetWrite(const KivDataset* dataset, KivPacketSink sink, void* context) {
  return Run([=] { kiv::WriteBinary(KIV_REQUIRED(dataset).View(), SinkOf(sink, context)); });
}

KivStatus KivDatasetRead(KivPacketSource source, void* context, KivDataset** dataset) {
  return Run([=] {
    KivDataset*& result = KIV_REQUIRED(dataset);
    result = new KivDataset(kiv::ReadBinary(SourceOf(source, context)));
  });
}

KivStatus KivDeltaSave(const KivDelta* delta, const char* path, size_t length, int32_t options) {
  return Run([=] {
    kiv::SaveDelta(KIV_REQUIRED(delta).delta, kiv::platform::PathFromText(KIV_TEXT(path, length)),
                   SaveOptionsOf(options));
  });
}

KivStatus KivDeltaLoad(const char* path, size_t length, KivDelta** delta) {
  return Run([=] {
    KivDelta*& result = KIV_REQUIRED(delta);
    result = new KivDelta{kiv::LoadDelta(kiv::platform::PathFromText(KIV_TEXT(path, length)))};
  });
}

KivStatus KivDeltaWrite(const KivDelta* delta, KivPacketSink sink, void* context) {
  return Run([=] { kiv::WriteDelta(KIV_REQUIRED(delta).delta, SinkOf(sink, context)); });
}

KivStatus KivDeltaRead(KivPacketSource source, void* context, KivDelta** delta) {
  return Run([=] {
    KivDelta*& result = KIV_REQUIRED(delta);
    result = new KivDelta{kiv::ReadDelta(SourceOf(source, context))};
  });
}

KivStatus KivJournalNew(KivDataset* dataset, const char* path, size_t length, int32_t flush, int32_t options,
                        KivJournal** journal) {
  return Run([=] {
    KivJournal*& result = KIV_REQUIRED(journal);
    if (flush < KIV_FLUSH_EACH_EDIT || flush > KIV_FLUSH_NEVER) {
      throw ArgumentError("flush: valoare necunoscuta");
    }
    result =
        new KivJournal{kiv::Journal(KIV_REQUIRED(dataset).Own(), kiv::platform::PathFromText(KIV_TEXT(path, length)),
                                    {.flush = static_cast<kiv::JournalFlush>(flush), .save = SaveOptionsOf(options)})};
  });
}

void KivJournalFree(KivJournal* journal) {
  delete journal;
}

KivStatus KivJournalSave(KivJournal* journal) {
  return Run([=] { KIV_REQUIRED(journal).journal.Save(); });
}

KivStatus KivJournalFlush(KivJournal* journal) {
  return Run([=] { KIV_REQUIRED(journal).journal.Flush(); });
}

KivStatus KivJournalSize(const KivJournal* journal, uint64_t* size) {
  return Run([=] {
    std::uint64_t& result = KIV_REQUIRED(size);
    result = KIV_REQUIRED(journal).journal.Size();
  });
}

KivLength KivDatasetName(const KivDataset* dataset, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return KIV_REQUIRED(dataset).View().Name(); });
}

KivLength KivDatasetFieldCount(const KivDataset* dataset) {
  return GiveLength([=] { return KIV_REQUIRED(dataset).View().GetSchema().Fields().size(); });
}

KivLength KivDatasetFieldName(const KivDataset* dataset, size_t field, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::TextView(FieldOf(KIV_REQUIRED(dataset).View(), field).name); });
}

KivStatus KivDatasetFieldInfo(const KivDataset* dataset, size_t field, int32_t* type, int32_t* size, int32_t* flags) {
  return Run([=] { GiveField(FieldOf(KIV_REQUIRED(dataset).View(), field), type, size, flags); });
}

KivAnswer KivDatasetFieldDefault(const KivDataset* dataset, size_t field, KivFieldValue* value) {
  return GiveAnswer([=] {
    const auto fields = KIV_REQUIRED(dataset).View().GetSchema().Fields();
    KivFieldValue& result = KIV_REQUIRED(value);
    if (field >= fields.size()) {
      throw ArgumentError("field: valoare necunoscuta");
    }
    return GiveValue(fields[field].defaultValue, result);
  });
}

KivLength KivDatasetCountOf(const KivDataset* dataset, int32_t state) {
  return GiveLength([=] {
    if (state < KIV_ROW_UNMODIFIED || state > KIV_ROW_DELETED) {
      throw ArgumentError("state: valoare necunoscuta");
    }
    return KIV_REQUIRED(dataset).View().CountOf(static_cast<kiv::RowState>(state));
  });
}

KivLength KivDatasetValueText(const KivDataset* dataset, uint32_t row, size_t field, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] {
    const kiv::DatasetView& rows = KIV_REQUIRED(dataset).View();
    return kiv::ShownValue(FieldOf(rows, field).type, rows.View(kiv::RowId{row}, rows.FieldAt(field)));
  });
}

KivLength KivDeltaName(const KivDelta* delta, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return KIV_REQUIRED(delta).delta.Name(); });
}

KivLength KivDeltaFieldCount(const KivDelta* delta) {
  return GiveLength([=] { return KIV_REQUIRED(delta).delta.GetSchema().Fields().size(); });
}

KivLength KivDeltaFieldName(const KivDelta* delta, size_t field, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity,
                  [=] { return kiv::TextView(FieldOf(KIV_REQUIRED(delta).delta.GetSchema(), field).name); });
}

KivStatus KivDeltaFieldInfo(const KivDelta* delta, size_t field, int32_t* type, int32_t* size, int32_t* flags) {
  return Run([=] { GiveField(FieldOf(KIV_REQUIRED(delta).delta.GetSchema(), field), type, size, flags); });
}

KivLength KivDeltaValueText(const KivDelta* delta, uint32_t ticket, size_t field, int32_t original, char* buffer,
                            size_t capacity) {
  return GiveText(buffer, capacity, [=] {
    const KivDelta& changes = KIV_REQUIRED(delta);
    const kiv::Value value = ValueOf(changes, ticket, field, original);
    return kiv::ShownValue(FieldOf(changes.delta.GetSchema(), field).type, value);
  });
}

KivAnswer KivDeltaIsNull(const KivDelta* delta, uint32_t ticket, size_t field, int32_t original) {
  return GiveAnswer(
      [=] { return std::holds_alternative<kiv::Null>(ValueOf(KIV_REQUIRED(delta), ticket, field, original)); });
}

}  // extern "C"
