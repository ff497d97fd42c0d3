#include "apps/kivtools/DataFile.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <utility>

#include "apps/kivtools/LibraryCalls.h"
#include "apps/kivtools/system/Paths.h"
#include "kivtools/Ascii.h"

#define KIVTOOLS_ENTRY(name) library_.package_.Function<decltype(name)>(#name)

namespace kivtools {

std::optional<DataFormat> FormatNamed(const std::filesystem::path& path) {
  static constexpr std::array<std::pair<std::string_view, DataFormat>, 3> kEndings = {
      {{".kdp", DataFormat::Packet}, {".xml", DataFormat::Xml}, {".csv", DataFormat::Csv}}};
  std::string ending = path.extension().string();
  std::ranges::transform(ending, ending.begin(), [](char character) { return kiv::ascii::ToLower(character); });
  const auto* const named = std::ranges::find(kEndings, ending, [](const auto& one) { return one.first; });
  return named == kEndings.end() ? std::nullopt : std::optional(named->second);
}

DataFormat FormatOf(const std::filesystem::path& path) {
  return FormatNamed(path).value_or(DataFormat::Packet);
}

DataFile::DataFile(const Library& library, const std::filesystem::path& path, const DataForm& form)
    : library_(library),
      dataset_(nullptr, KIVTOOLS_ENTRY(KivDatasetFree)),
      delta_(nullptr, KIVTOOLS_ENTRY(KivDeltaFree)) {
  const std::string name = LibraryPath(path);
  switch (FormatOf(path)) {
    case DataFormat::Packet:
      LoadPacket(name);
      break;
    case DataFormat::Xml:
      LoadXml(name);
      break;
    case DataFormat::Csv:
      LoadCsv(name, form);
      isText_ = true;
      break;
  }
  ReadFields();
}

void DataFile::LoadPacket(const std::string& name) {
  std::int32_t content = 0;
  Check(KIVTOOLS_ENTRY(KivPacketContent)(name.data(), name.size(), &content));
  if (content == KIV_PACKET_DELTA) {
    KivDelta* delta = nullptr;
    Check(KIVTOOLS_ENTRY(KivDeltaLoad)(name.data(), name.size(), &delta));
    delta_.reset(delta);
  } else {
    KivDataset* dataset = nullptr;
    Check(KIVTOOLS_ENTRY(KivDatasetLoad)(name.data(), name.size(), &dataset, &replayed_, &lostBytes_));
    dataset_.reset(dataset);
  }
}

void DataFile::LoadXml(const std::string& name) {
  KivDataset* dataset = nullptr;
  Check(KIVTOOLS_ENTRY(KivDatasetLoadXml)(name.data(), name.size(), &dataset));
  dataset_.reset(dataset);
}

std::size_t DataFile::SaveDifference(const DataFile& after, const std::vector<std::string>& key,
                                     const std::filesystem::path& path) const {
  std::vector<std::string> names(key.size());
  std::vector<const char*> pointers(key.size());
  for (std::size_t i = 0; i < key.size(); ++i) {
    names[i] = library_.FromUtf8(key[i]);
    pointers[i] = names[i].c_str();
  }
  KivDelta* made = nullptr;
  Check(KIVTOOLS_ENTRY(KivDatasetDifference)(dataset_.get(), after.dataset_.get(), pointers.data(), nullptr,
                                             pointers.size(), &made));
  const std::unique_ptr<KivDelta, decltype(KivDeltaFree)*> delta(made, KIVTOOLS_ENTRY(KivDeltaFree));
  const std::string name = LibraryPath(path);
  Check(KIVTOOLS_ENTRY(KivDeltaSave)(delta.get(), name.data(), name.size(), 0));
  return static_cast<std::size_t>(KIVTOOLS_ENTRY(KivDeltaCount)(delta.get()));
}

void DataFile::LoadCsv(const std::string& name, const DataForm& form) {
  const std::unique_ptr<KivSchema, decltype(KivSchemaFree)*> types(KIVTOOLS_ENTRY(KivSchemaNew)(),
                                                                   KIVTOOLS_ENTRY(KivSchemaFree));
  for (const DataForm::Column& column : form.columns) {
    const std::string columnName = library_.FromUtf8(column.name);
    Check(KIVTOOLS_ENTRY(KivSchemaAddField)(types.get(), columnName.data(), columnName.size(), column.type, 0, 0));
  }
  const std::string datasetName = library_.FromUtf8(form.name);
  KivDataset* dataset = nullptr;
  Check(KIVTOOLS_ENTRY(KivDatasetLoadCsv)(name.data(), name.size(), datasetName.data(), datasetName.size(), types.get(),
                                          form.separator, form.csv, &dataset));
  dataset_.reset(dataset);
}

void DataFile::Save(const std::filesystem::path& path, const DataForm& form) const {
  const std::string name = LibraryPath(path);
  switch (FormatOf(path)) {
    case DataFormat::Packet:
      Check(KIVTOOLS_ENTRY(KivDatasetSave)(dataset_.get(), name.data(), name.size(), 0));
      break;
    case DataFormat::Xml:
      Check(KIVTOOLS_ENTRY(KivDatasetSaveXml)(dataset_.get(), name.data(), name.size(), 0));
      break;
    case DataFormat::Csv:
      Check(KIVTOOLS_ENTRY(KivDatasetSaveCsv)(dataset_.get(), name.data(), name.size(), form.separator, form.csv, 0));
      break;
  }
}

void DataFile::Check(KivStatus status) const {
  if (status != -KIV_ERROR_PACKET) {
    library_.Check(status);
    return;
  }
  std::int32_t chunk = 0;
  std::uint64_t offset = 0;
  KIVTOOLS_ENTRY(KivLastErrorPlace)(&chunk, &offset);
  DamagedFile damaged(library_.Text(KIVTOOLS_ENTRY(KivLastErrorMessage)), chunk, offset);
  KIVTOOLS_ENTRY(KivLastErrorLine)(&damaged.line, &damaged.column);
  throw damaged;
}

void DataFile::ReadFields() {
  name_ = IsDelta() ? library_.Text(KIVTOOLS_ENTRY(KivDeltaName), delta_.get())
                    : library_.Text(KIVTOOLS_ENTRY(KivDatasetName), dataset_.get());
  const KivLength count = IsDelta() ? KIVTOOLS_ENTRY(KivDeltaFieldCount)(delta_.get())
                                    : KIVTOOLS_ENTRY(KivDatasetFieldCount)(dataset_.get());
  for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
    Field field;
    std::int32_t flags = 0;
    if (IsDelta()) {
      field.name = library_.Text(KIVTOOLS_ENTRY(KivDeltaFieldName), delta_.get(), i);
      Check(KIVTOOLS_ENTRY(KivDeltaFieldInfo)(delta_.get(), i, &field.type, nullptr, &flags));
    } else {
      field.name = library_.Text(KIVTOOLS_ENTRY(KivDatasetFieldName), dataset_.get(), i);
      Check(KIVTOOLS_ENTRY(KivDatasetFieldInfo)(dataset_.get(), i, &field.type, nullptr, &flags));
    }
    field.isKey = (flags & KIV_FLAG_KEY) != 0;
    fields_.push_back(std::move(field));
  }
  if (!IsDelta()) {
    KivDelta* delta = nullptr;
    Check(KIVTOOLS_ENTRY(KivDatasetMakeDelta)(dataset_.get(), &delta));
    delta_.reset(delta);
  }
}

std::size_t DataFile::CountOf(std::int32_t state) const {
  return static_cast<std::size_t>(KIVTOOLS_ENTRY(KivDatasetCountOf)(dataset_.get(), state));
}

std::size_t DataFile::LogLength() const {
  return static_cast<std::size_t>(KIVTOOLS_ENTRY(KivDatasetChangeCount)(dataset_.get()));
}

DataFile::Shown DataFile::RowValue(std::uint32_t row, std::size_t field) const {
  if (KIVTOOLS_ENTRY(KivDatasetIsNull)(dataset_.get(), row, field) != 0) {
    return {};
  }
  return library_.LibraryText(KIVTOOLS_ENTRY(KivDatasetValueText), dataset_.get(), row, field);
}

void DataFile::TakeBackChanges() {
  Check(KIVTOOLS_ENTRY(KivDatasetCancelChanges)(dataset_.get()));
}

bool DataFile::HasValues(std::size_t field) const {
  auto* const next = KIVTOOLS_ENTRY(KivDatasetNextRow);
  auto* const isNull = KIVTOOLS_ENTRY(KivDatasetIsNull);
  std::uint32_t row = KIV_NO_ROW;
  while (next(dataset_.get(), row, &row) == 1) {
    if (isNull(dataset_.get(), row, field) == 0) {
      return true;
    }
  }
  return false;
}

std::optional<std::size_t> DataFile::FindField(const std::string& name) const {
  const std::string wanted = library_.FromUtf8(name);
  const KivLength found = KIVTOOLS_ENTRY(KivDatasetField)(dataset_.get(), wanted.data(), wanted.size());
  return found < 0 ? std::nullopt : std::optional(static_cast<std::size_t>(found));
}

std::uint64_t DataFile::ForEachRow(const Wanted& wanted,
                                   const std::function<void(std::int32_t, const std::vector<Shown>&)>& visit) const {
  KivCursor* made = nullptr;
  Check(KIVTOOLS_ENTRY(KivCursorNew)(dataset_.get(), &made));
  const std::unique_ptr<KivCursor, decltype(KivCursorFree)*> cursor(made, KIVTOOLS_ENTRY(KivCursorFree));
  const std::string order = library_.FromUtf8(wanted.order);
  Check(KIVTOOLS_ENTRY(KivCursorOrderBy)(made, order.data(), order.size()));
  if (!wanted.filter.empty()) {
    const std::string filter = library_.FromUtf8(wanted.filter);
    Check(KIVTOOLS_ENTRY(KivCursorFilter)(made, filter.data(), filter.size()));
  }
  auto* const next = KIVTOOLS_ENTRY(KivCursorNext);
  auto* const rowOf = KIVTOOLS_ENTRY(KivCursorRow);
  auto* const stateOf = KIVTOOLS_ENTRY(KivDatasetState);
  std::vector<Shown> values(wanted.fields.size());
  std::uint64_t visited = 0;
  for (; visited < wanted.most && next(made) == 1; ++visited) {
    std::uint32_t row = 0;
    std::int32_t state = 0;
    rowOf(made, &row);
    Check(stateOf(dataset_.get(), row, &state));
    for (std::size_t i = 0; i < values.size(); ++i) {
      values[i] = RowValue(row, wanted.fields[i]);
    }
    visit(state, values);
  }
  return static_cast<std::uint64_t>(KIVTOOLS_ENTRY(KivCursorCount)(made)) - visited;
}

namespace {

/// A sum as the values that it is made of are shown.
std::string ShownSum(const KivFieldValue& sum) {
  if (sum.kind == KIV_VALUE_DOUBLE) {
    std::array<char, 32> digits{};
    return {digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), sum.number).ptr};
  }
  std::string shown = std::to_string(sum.integer);
  if (sum.kind == KIV_VALUE_CURRENCY) {
    const std::size_t sign = sum.integer < 0 ? 1 : 0;
    shown.insert(sign, 5 - std::min<std::size_t>(5, shown.size() - sign), '0');
    shown.insert(shown.size() - 4, 1, '.');
  }
  return shown;
}

}  // namespace

DataFile::Totals DataFile::SumUp(const std::string& filter, const std::vector<std::size_t>& fields) const {
  const std::string condition = filter.empty() ? "true" : library_.FromUtf8(filter);
  KivFilter* made = nullptr;
  Check(
      KIVTOOLS_ENTRY(KivFilterNew)(dataset_.get(), condition.data(), condition.size(), nullptr, 0, nullptr, 0, &made));
  const std::unique_ptr<KivFilter, decltype(KivFilterFree)*> rows(made, KIVTOOLS_ENTRY(KivFilterFree));
  const auto checked = [this](auto answer) {
    Check(static_cast<KivStatus>(std::min<decltype(answer)>(answer, 0)));
    return answer;
  };
  Totals totals{static_cast<std::size_t>(checked(KIVTOOLS_ENTRY(KivFilterCount)(made))), {}};
  for (const std::size_t field : fields) {
    KivFieldValue sum{};
    const bool hasSum = checked(KIVTOOLS_ENTRY(KivFilterSum)(made, field, &sum)) == 1;
    totals.sums.push_back(hasSum ? Shown(ShownSum(sum)) : Shown());
  }
  return totals;
}

DataFile::Shown DataFile::TicketValue(std::uint32_t ticket, std::size_t field, bool original) const {
  if (KIVTOOLS_ENTRY(KivDeltaIsNull)(delta_.get(), ticket, field, original ? 1 : 0) != 0) {
    return {};
  }
  return library_.LibraryText(KIVTOOLS_ENTRY(KivDeltaValueText), delta_.get(), ticket, field,
                              std::int32_t{original ? 1 : 0});
}

DataFile::Change DataFile::ReadChange(std::uint32_t ticket) const {
  Change change{};
  Check(KIVTOOLS_ENTRY(KivDeltaTicket)(delta_.get(), ticket, &change.kind, nullptr));
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    const bool isChanged = KIVTOOLS_ENTRY(KivDeltaIsChanged)(delta_.get(), ticket, i) == 1;
    if (!isChanged && !fields_[i].isKey) {
      continue;
    }
    Change::Value value{.field = i, .was = {}, .is = {}, .isChanged = isChanged};
    if (change.kind != KIV_CHANGE_INSERT) {
      value.was = TicketValue(ticket, i, true);
    }
    if (change.kind != KIV_CHANGE_DELETE) {
      value.is = TicketValue(ticket, i, false);
    }
    change.values.push_back(std::move(value));
  }
  return change;
}

void DataFile::ForEachChange(const std::function<void(const Change&)>& visit) const {
  const auto count = static_cast<std::uint32_t>(KIVTOOLS_ENTRY(KivDeltaCount)(delta_.get()));
  for (std::uint32_t ticket = 0; ticket < count; ++ticket) {
    visit(ReadChange(ticket));
  }
}

}  // namespace kivtools
