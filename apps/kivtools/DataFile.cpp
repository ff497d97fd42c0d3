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

void DataFile::ForEachRow(const std::function<void(std::int32_t, const std::vector<Shown>&)>& visit) const {
  std::vector<Shown> values(fields_.size());
  std::uint32_t row = KIV_NO_ROW;
  while (KIVTOOLS_ENTRY(KivDatasetNextRow)(dataset_.get(), row, &row) == 1) {
    std::int32_t state = 0;
    Check(KIVTOOLS_ENTRY(KivDatasetState)(dataset_.get(), row, &state));
    for (std::size_t i = 0; i < values.size(); ++i) {
      values[i] = RowValue(row, i);
    }
    visit(state, values);
  }
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
