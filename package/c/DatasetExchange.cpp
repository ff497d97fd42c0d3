#include "kivtools/c/DatasetExchange.h"

#include "kivtools/dataset/Csv.h"
#include "kivtools/dataset/Difference.h"
#include "kivtools/dataset/Xml.h"
#include "package/c/Abi.h"
#include "package/c/DatasetHandles.h"
#include "platform/Paths.h"

using namespace kiv::c;

namespace {

kiv::CsvEncoding EncodingOf(std::int32_t csv) {
  constexpr std::int32_t kAll =
      KIV_CSV_UTF8 | KIV_CSV_WINDOWS1250 | KIV_CSV_ROMANIAN | KIV_CSV_MARK | KIV_CSV_FOR_SPREADSHEET;
  constexpr std::int32_t kBoth = KIV_CSV_UTF8 | KIV_CSV_WINDOWS1250;
  if ((csv & ~kAll) != 0 || (csv & kBoth) == kBoth) {
    throw ArgumentError("csv: valoare necunoscuta");
  }
  return (csv & KIV_CSV_UTF8) != 0          ? kiv::CsvEncoding::Utf8
         : (csv & KIV_CSV_WINDOWS1250) != 0 ? kiv::CsvEncoding::Windows1250
                                            : kiv::CsvEncoding::Detect;
}

kiv::CsvNumbers NumbersOf(std::int32_t csv) noexcept {
  return (csv & KIV_CSV_ROMANIAN) != 0 ? kiv::CsvNumbers::Romanian : kiv::CsvNumbers::Plain;
}

char SeparatorOf(std::int32_t separator) {
  if (separator < 0 || separator > 0x7F) {
    throw ArgumentError("separator: valoare necunoscuta");
  }
  return static_cast<char>(separator);
}

kiv::CsvReadOptions ReadOptionsOf(const KivSchema* types, std::int32_t separator, std::int32_t csv) {
  kiv::CsvReadOptions options{.encoding = EncodingOf(csv), .numbers = NumbersOf(csv)};
  if (separator != 0) {
    options.separator = SeparatorOf(separator);
  }
  if (types != nullptr) {
    options.fields = types->fields;
  }
  return options;
}

kiv::CsvWriteOptions WriteOptionsOf(std::int32_t separator, std::int32_t csv) {
  return {.separator = separator == 0 ? ',' : SeparatorOf(separator),
          .encoding = EncodingOf(csv),
          .numbers = NumbersOf(csv),
          .mark = (csv & KIV_CSV_MARK) != 0,
          .forSpreadsheet = (csv & KIV_CSV_FOR_SPREADSHEET) != 0};
}

}  // namespace

extern "C" {

KivStatus KivDatasetLoadCsv(const char* path, size_t length, const char* name, size_t nameLength,
                            const KivSchema* types, int32_t separator, int32_t csv, KivDataset** dataset) {
  return Run([=] {
    KivDataset*& result = KIV_REQUIRED(dataset);
    const kiv::CsvReadOptions options = ReadOptionsOf(types, separator, csv);
    result = new KivDataset(
        kiv::LoadCsv(kiv::platform::PathFromText(KIV_TEXT(path, length)), options, KIV_TEXT(name, nameLength)));
  });
}

KivStatus KivDatasetSaveCsv(const KivDataset* dataset, const char* path, size_t length, int32_t separator, int32_t csv,
                            int32_t options) {
  return Run([=] {
    const kiv::CsvWriteOptions written = WriteOptionsOf(separator, csv);
    kiv::SaveCsv(KIV_REQUIRED(dataset).View(), kiv::platform::PathFromText(KIV_TEXT(path, length)), written,
                 SaveOptionsOf(options));
  });
}

KivStatus KivDatasetReadCsv(KivPacketSource source, void* context, const char* name, size_t nameLength,
                            const KivSchema* types, int32_t separator, int32_t csv, KivDataset** dataset) {
  return Run([=] {
    KivDataset*& result = KIV_REQUIRED(dataset);
    const kiv::CsvReadOptions options = ReadOptionsOf(types, separator, csv);
    result = new KivDataset(kiv::ReadCsv(SourceOf(source, context), KIV_TEXT(name, nameLength), options));
  });
}

KivStatus KivDatasetWriteCsv(const KivDataset* dataset, int32_t separator, int32_t csv, KivPacketSink sink,
                             void* context) {
  return Run(
      [=] { kiv::WriteCsv(KIV_REQUIRED(dataset).View(), SinkOf(sink, context), WriteOptionsOf(separator, csv)); });
}

KivStatus KivDatasetLoadXml(const char* path, size_t length, KivDataset** dataset) {
  return Run([=] {
    KivDataset*& result = KIV_REQUIRED(dataset);
    result = new KivDataset(kiv::LoadXml(kiv::platform::PathFromText(KIV_TEXT(path, length))));
  });
}

KivStatus KivDatasetSaveXml(const KivDataset* dataset, const char* path, size_t length, int32_t options) {
  return Run([=] {
    kiv::SaveXml(KIV_REQUIRED(dataset).View(), kiv::platform::PathFromText(KIV_TEXT(path, length)),
                 SaveOptionsOf(options));
  });
}

KivStatus KivDatasetReadXml(KivPacketSource source, void* context, KivDataset** dataset) {
  return Run([=] {
    KivDataset*& result = KIV_REQUIRED(dataset);
    result = new KivDataset(kiv::ReadXml(SourceOf(source, context)));
  });
}

KivStatus KivDatasetWriteXml(const KivDataset* dataset, KivPacketSink sink, void* context) {
  return Run([=] { kiv::WriteXml(KIV_REQUIRED(dataset).View(), SinkOf(sink, context)); });
}

KivStatus KivDatasetDifference(const KivDataset* before, const KivDataset* after, const char* const* keys,
                               const size_t* lengths, size_t count, KivDelta** delta) {
  return Run([=] {
    KivDelta*& result = KIV_REQUIRED(delta);
    const kiv::StringList key = KIV_LIST(keys, lengths, count);
    kiv::Dataset change = kiv::Difference(KIV_REQUIRED(before).View(), KIV_REQUIRED(after).View(), key);
    result = new KivDelta{change.Changes().MakeDelta()};
  });
}

}  // extern "C"
