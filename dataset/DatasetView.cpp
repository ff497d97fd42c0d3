#include "core/Calendar.h"
#include "core/Numbers.h"
#include "dataset/store/Contents.h"
#include "kivtools/dataset/Dataset.h"

namespace kiv {

using store::Cell;
using store::Contents;
using store::RequireRow;
using store::StoredState;

namespace {

constexpr std::uint8_t BitOf(StoredState state) noexcept {
  return static_cast<std::uint8_t>(1U << static_cast<unsigned>(state));
}
constexpr std::uint8_t kPresent =
    BitOf(StoredState::Unmodified) | BitOf(StoredState::Inserted) | BitOf(StoredState::Modified);

}  // namespace

std::uint32_t RowRange::Next(const store::ContentsHead* contents, std::uint32_t from, std::uint8_t states) noexcept {
  for (std::uint32_t row = from; row < contents->rowCount; ++row) {
    if ((states & BitOf(contents->StateOf(row))) != 0) {
      return row;
    }
  }
  return kEnd;
}

TextView DatasetView::Name() const noexcept {
  return GetContents().name;
}

const Schema& DatasetView::GetSchema() const noexcept {
  return GetContents().schema;
}

std::size_t DatasetView::ResolveName(const Contents& contents, FieldSelector field) {
  if ((field.size_ & FieldSelector::kIsReference) != 0) {
    throw Error(contents.owner + ": campul este al altui set de date");
  }
  const TextView name(static_cast<const char*>(field.owner_), field.size_);
  return store::RequireField(contents, name);
}

FieldRef DatasetView::Field(TextView name) const {
  return {GetContents().schemaData, static_cast<std::uint16_t>(Resolve(GetContents(), name))};
}

FieldRef DatasetView::FieldAt(std::size_t index) const {
  if (index >= GetContents().columns.size()) {
    Text message = GetContents().owner + ": campul ";
    AppendDecimal(message, index);
    throw ListIndexError(message + " nu exista");
  }
  return {GetContents().schemaData, static_cast<std::uint16_t>(index)};
}

std::size_t DatasetView::RowCount() const noexcept {
  return CountOf(RowState::Unmodified) + CountOf(RowState::Inserted) + CountOf(RowState::Modified);
}

std::size_t DatasetView::CountOf(RowState state) const noexcept {
  return GetContents().counts[static_cast<std::size_t>(state)];
}

RowRange DatasetView::Rows() const noexcept {
  return {head_, kPresent};
}

RowRange DatasetView::Rows(RowState state) const noexcept {
  return {head_, BitOf(static_cast<StoredState>(state))};
}

std::optional<RowId> DatasetView::NextRow(std::optional<RowId> after) const noexcept {
  const std::uint32_t from = after ? static_cast<std::uint32_t>(*after) + 1 : 0;
  const std::uint32_t row = RowRange::Next(head_, from, kPresent);
  return row == RowRange::kEnd ? std::nullopt : std::optional(static_cast<RowId>(row));
}

std::size_t DatasetView::ChangeCount() const noexcept {
  return GetContents().log.Count();
}

bool DatasetView::Exists(RowId row) const noexcept {
  const auto number = static_cast<std::uint32_t>(row);
  return number < GetContents().rowCount && GetContents().StateOf(number) != StoredState::Gone;
}

RowState DatasetView::State(RowId row) const {
  return static_cast<RowState>(GetContents().StateOf(RequireRow(GetContents(), row, true)));
}

namespace {

[[noreturn]] void RefuseType(const Contents& contents, std::size_t field) {
  throw InvalidCast(contents.owner + ": campul " + store::Quoted(contents.schemaData->fields[field].name) +
                    " este de tip " + store::TraitsOf(contents.columns[field].type).name +
                    " si nu se citeste ca alt fel de valoare");
}

}  // namespace

const store::ColumnHead& DatasetView::LocateOrRefuse(RowId row, FieldSelector field, TypeSet types) const {
  const Contents& contents = GetContents();
  const std::size_t index = Resolve(contents, field);
  const store::ColumnHead& column = contents.columns[index];
  if ((types >> static_cast<unsigned>(column.type) & 1U) == 0) {
    RefuseType(contents, index);
  }
  RequireRow(contents, row);
  return column;
}

DateTime DatasetView::MomentAt(const store::ColumnHead& column, std::uint32_t row) noexcept {
  return MomentOf(column.type == FieldType::DateTime ? column.values.At<std::int64_t>(row)
                                                     : column.values.At<std::int32_t>(row));
}

TextView DatasetView::TextAt(const store::ColumnHead& column, std::uint32_t row) const noexcept {
  if (column.IsNull(row)) {
    return {};
  }
  const auto code = column.values.At<std::uint32_t>(row);
  const store::LargeValues& large = GetContents().large;
  return column.type == FieldType::Memo || column.type == FieldType::Blob
             ? large.At(code)
             : static_cast<const store::Column&>(column).texts.Read(code, large);
}

std::u16string_view DatasetView::GetWideText(RowId row, FieldSelector field) const {
  const std::string_view bytes = TextAt(Locate(row, field, SetOf(FieldType::WideText)), NumberOf(row));
  return {reinterpret_cast<const char16_t*>(bytes.data()), bytes.size() / sizeof(char16_t)};
}

Guid DatasetView::GetGuid(RowId row, FieldSelector field) const {
  const store::ColumnHead& column = Locate(row, field, SetOf(FieldType::Guid));
  const Cell cell = static_cast<const store::Column&>(column).Load(NumberOf(row));
  return cell.isNull ? Guid() : std::get<Guid>(store::ViewOf(FieldType::Guid, cell).Get());
}

BytesView DatasetView::GetBytes(RowId row, FieldSelector field) const {
  const std::string_view bytes = TextAt(Locate(row, field, SetOf(FieldType::Blob, FieldType::Memo)), NumberOf(row));
  return {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()};
}

ValueView DatasetView::View(RowId row, FieldSelector field) const {
  const std::size_t index = Resolve(GetContents(), field);
  return store::ViewOf(GetContents().columns[index].type, GetContents().Read(RequireRow(GetContents(), row), index));
}

Value DatasetView::Get(RowId row, FieldSelector field) const {
  const std::size_t index = Resolve(GetContents(), field);
  return store::ValueOf(GetContents().columns[index].type, GetContents().Read(RequireRow(GetContents(), row), index));
}

Value DatasetView::Original(RowId row, FieldSelector field) const {
  const std::size_t index = Resolve(GetContents(), field);
  const std::uint32_t number = RequireRow(GetContents(), row, true);
  if (GetContents().StateOf(number) == StoredState::Inserted) {
    store::RefuseRow(GetContents(), number, " este nou si nu are valori initiale");
  }
  return store::ValueOf(GetContents().columns[index].type, GetContents().ReadOriginal(number, index));
}

}  // namespace kiv
