#include "core/Calendar.h"
#include "core/Numbers.h"
#include "dataset/query/CalculatedColumns.h"
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

const void* DatasetView::CalculatedOwner(const Contents& contents) noexcept {
  // Within what tells whose a field is, so that it is nobody else's either.
  return reinterpret_cast<const std::byte*>(contents.schemaData) + 1;
}

std::size_t DatasetView::ResolveAny(const Contents& contents, FieldSelector field) {
  const std::size_t fields = contents.columns.size();
  if ((field.size_ & FieldSelector::kIsReference) != 0) {
    const std::size_t index = field.size_ & ~FieldSelector::kIsReference;
    if (field.owner_ != CalculatedOwner(contents)) {
      return Resolve(contents, field);
    }
    if (contents.calculated == nullptr || index - fields >= contents.calculated->Count()) {
      throw Error(contents.owner + ": o imagine nu are campuri calculate");
    }
    return index;
  }
  const TextView name(static_cast<const char*>(field.owner_), field.size_);
  const auto found = query::IndexOfAny(contents, name);
  return found ? *found : store::RequireField(contents, name);
}

std::size_t DatasetView::ResolveName(const Contents& contents, FieldSelector field) {
  const bool isReference = (field.size_ & FieldSelector::kIsReference) != 0;
  if (isReference && field.owner_ != CalculatedOwner(contents)) {
    throw Error(contents.owner + ": campul este al altui set de date");
  }
  if (!isReference) {
    const auto found = contents.schemaData->IndexOf({static_cast<const char*>(field.owner_), field.size_});
    if (found) {
      return *found;
    }
  }
  const FieldDef& calculated = query::FieldAt(contents, ResolveAny(contents, field));
  throw Error(contents.owner + ": campul " + store::Quoted(calculated.name) + " este calculat si nu se modifica");
}

FieldRef DatasetView::Field(TextView name) const {
  return FieldAt(ResolveAny(GetContents(), name));
}

FieldRef DatasetView::FieldAt(std::size_t index) const {
  const Contents& contents = GetContents();
  const std::size_t fields = contents.columns.size();
  if (index >= fields + (contents.calculated == nullptr ? 0 : contents.calculated->Count())) {
    Text message = contents.owner + ": campul ";
    AppendDecimal(message, index);
    throw ListIndexError(message + " nu exista");
  }
  return {index < fields ? contents.schemaData : CalculatedOwner(contents), static_cast<std::uint16_t>(index)};
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

DatasetView::Location DatasetView::LocateOrRefuse(RowId row, FieldSelector field, TypeSet types) const {
  const Contents& contents = GetContents();
  const std::size_t index = ResolveAny(contents, field);
  const FieldDef& definition = query::FieldAt(contents, index);
  if ((types >> static_cast<unsigned>(definition.type) & 1U) == 0) {
    throw InvalidCast(contents.owner + ": campul " + store::Quoted(definition.name) + " este de tip " +
                      store::TraitsOf(definition.type).name + " si nu se citeste ca alt fel de valoare");
  }
  const std::uint32_t number = RequireRow(contents, row);
  const query::CalculatedColumn* const calculated = query::CalculatedAt(contents, index);
  return calculated == nullptr ? Location{&contents.columns[index], number, false}
                               : Location{&calculated->Show(contents, number), 0, true};
}

DateTime DatasetView::MomentAt(const store::ColumnHead& column, std::uint32_t row) noexcept {
  return MomentOf(column.type == FieldType::DateTime ? column.values.At<std::int64_t>(row)
                                                     : column.values.At<std::int32_t>(row));
}

TextView DatasetView::TextAt(const Location& found) const noexcept {
  const auto& column = static_cast<const store::Column&>(*found.column);
  if (found.isCalculated) {
    return static_cast<const query::CalculatedColumn::Shown&>(column).bytes;
  }
  if (column.IsNull(found.row)) {
    return {};
  }
  const auto code = column.values.At<std::uint32_t>(found.row);
  const store::LargeValues& large = GetContents().large;
  return column.type == FieldType::Memo || column.type == FieldType::Blob ? large.At(code)
                                                                          : column.texts.Read(code, large);
}

std::u16string_view DatasetView::GetWideText(RowId row, FieldSelector field) const {
  const std::string_view bytes = TextAt(Locate(row, field, SetOf(FieldType::WideText)));
  return {reinterpret_cast<const char16_t*>(bytes.data()), bytes.size() / sizeof(char16_t)};
}

Guid DatasetView::GetGuid(RowId row, FieldSelector field) const {
  const Location found = Locate(row, field, SetOf(FieldType::Guid));
  const Cell cell = static_cast<const store::Column&>(*found.column).Load(found.row);
  return cell.isNull ? Guid() : std::get<Guid>(store::ViewOf(FieldType::Guid, cell).Get());
}

BytesView DatasetView::GetBytes(RowId row, FieldSelector field) const {
  const std::string_view bytes = TextAt(Locate(row, field, SetOf(FieldType::Blob, FieldType::Memo)));
  return {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()};
}

ValueView DatasetView::View(RowId row, FieldSelector field) const {
  const Contents& contents = GetContents();
  const std::size_t index = ResolveAny(contents, field);
  const std::uint32_t number = RequireRow(contents, row);
  const query::CalculatedColumn* const calculated = query::CalculatedAt(contents, index);
  return calculated == nullptr ? store::ViewOf(contents.columns[index].type, contents.Read(number, index))
                               : store::ViewOf(calculated->Field().type, calculated->Evaluate(contents, number));
}

Value DatasetView::Get(RowId row, FieldSelector field) const {
  return store::OwnedValue(View(row, field));
}

Value DatasetView::Original(RowId row, FieldSelector field) const {
  const Contents& contents = GetContents();
  const std::size_t index = ResolveAny(contents, field);
  const std::uint32_t number = RequireRow(contents, row, true);
  if (contents.StateOf(number) == StoredState::Inserted) {
    store::RefuseRow(contents, number, " este nou si nu are valori initiale");
  }
  const auto originalOf = [&](std::uint32_t original) { return contents.ReadOriginal(number, original); };
  const query::CalculatedColumn* const calculated = query::CalculatedAt(contents, index);
  return calculated == nullptr
             ? store::ValueOf(contents.columns[index].type, originalOf(static_cast<std::uint32_t>(index)))
             : store::ValueOf(calculated->Field().type, calculated->EvaluateOf(originalOf, number));
}

}  // namespace kiv
