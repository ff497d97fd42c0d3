#include "apps/kivtools/DataFile.h"

#include "apps/kivtools/LibraryCalls.h"
#include "apps/kivtools/system/Paths.h"

#define KIVTOOLS_ENTRY(name) library_.package_.Function<decltype(name)>(#name)

namespace kivtools {

DataFile::DataFile(const Library& library, const std::filesystem::path& path)
    : library_(library),
      dataset_(nullptr, KIVTOOLS_ENTRY(KivDatasetFree)),
      delta_(nullptr, KIVTOOLS_ENTRY(KivDeltaFree)) {
  const std::string name = LibraryPath(path);
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
  ReadFields();
}

void DataFile::Check(KivStatus status) const {
  if (status != -KIV_ERROR_PACKET) {
    library_.Check(status);
    return;
  }
  std::int32_t chunk = 0;
  std::uint64_t offset = 0;
  KIVTOOLS_ENTRY(KivLastErrorPlace)(&chunk, &offset);
  throw DamagedFile(library_.Text(KIVTOOLS_ENTRY(KivLastErrorMessage)), chunk, offset);
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
