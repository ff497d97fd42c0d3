#include "core/Numbers.h"
#include "dataset/store/Contents.h"
#include "kivtools/dataset/Dataset.h"

namespace kiv {

using store::Cell;
using store::Contents;
using store::StoredState;

namespace {

constexpr std::uint8_t BitOf(StoredState state) noexcept {
  return static_cast<std::uint8_t>(1U << static_cast<unsigned>(state));
}
constexpr std::uint8_t kPresent =
    BitOf(StoredState::Unmodified) | BitOf(StoredState::Inserted) | BitOf(StoredState::Modified);

[[noreturn]] void RefuseRow(const Contents& contents, std::uint32_t row, TextView why) {
  Text message = contents.owner + ": randul ";
  AppendDecimal(message, row);
  throw Error(message.append(why));
}

/// The row's number. Throws for one that is not there.
std::uint32_t RequireRow(const Contents& contents, RowId id, bool mayBeDeleted = false) {
  const auto row = static_cast<std::uint32_t>(id);
  if (row >= contents.rowCount || contents.StateOf(row) == StoredState::Gone) {
    RefuseRow(contents, row, " nu exista");
  }
  if (!mayBeDeleted && contents.StateOf(row) == StoredState::Deleted) {
    RefuseRow(contents, row, " este sters");
  }
  return row;
}

}  // namespace

std::uint32_t RowRange::Next(const Contents* contents, std::uint32_t from, std::uint8_t states) noexcept {
  for (std::uint32_t row = from; row < contents->rowCount; ++row) {
    if ((states & BitOf(contents->StateOf(row))) != 0) {
      return row;
    }
  }
  return kEnd;
}

TextView DatasetView::Name() const noexcept {
  return contents_->name;
}

const Schema& DatasetView::GetSchema() const noexcept {
  return contents_->schema;
}

std::size_t DatasetView::Resolve(const Contents& contents, const FieldSelector& field) {
  if (field.owner_ == contents.schemaData) {
    return field.index_;
  }
  if (field.owner_ != nullptr) {
    throw Error(contents.owner + ": campul este al altui set de date");
  }
  const auto found = contents.schemaData->IndexOf(field.name_);
  if (!found) {
    throw Error(contents.owner + ": campul " + store::Quoted(field.name_) + " nu exista");
  }
  return *found;
}

FieldRef DatasetView::Field(TextView name) const {
  return {contents_->schemaData, static_cast<std::uint16_t>(Resolve(*contents_, name))};
}

FieldRef DatasetView::FieldAt(std::size_t index) const {
  if (index >= contents_->columns.size()) {
    Text message = contents_->owner + ": campul ";
    AppendDecimal(message, index);
    throw ListIndexError(message + " nu exista");
  }
  return {contents_->schemaData, static_cast<std::uint16_t>(index)};
}

std::size_t DatasetView::RowCount() const noexcept {
  return CountOf(RowState::Unmodified) + CountOf(RowState::Inserted) + CountOf(RowState::Modified);
}

std::size_t DatasetView::CountOf(RowState state) const noexcept {
  return contents_->counts[static_cast<std::size_t>(state)];
}

RowRange DatasetView::Rows() const noexcept {
  return {contents_, kPresent};
}

RowRange DatasetView::Rows(RowState state) const noexcept {
  return {contents_, BitOf(static_cast<StoredState>(state))};
}

bool DatasetView::Exists(RowId row) const noexcept {
  const auto number = static_cast<std::uint32_t>(row);
  return number < contents_->rowCount && contents_->StateOf(number) != StoredState::Gone;
}

RowState DatasetView::State(RowId row) const {
  return static_cast<RowState>(contents_->StateOf(RequireRow(*contents_, row, true)));
}

bool DatasetView::IsNull(RowId row, FieldSelector field) const {
  return contents_->columns[Resolve(*contents_, field)].IsNull(RequireRow(*contents_, row));
}

Cell DatasetView::Read(RowId row, const FieldSelector& field, TypeSet types) const {
  const std::size_t index = Resolve(*contents_, field);
  const FieldType type = contents_->columns[index].type;
  if ((types >> static_cast<unsigned>(type) & 1U) == 0) {
    throw InvalidCast(contents_->owner + ": campul " + store::Quoted(contents_->schemaData->fields[index].name) +
                      " este de tip " + store::TraitsOf(type).name + " si nu se citeste ca alt fel de valoare");
  }
  return contents_->Read(RequireRow(*contents_, row), index);
}

namespace {

template <class... Types>
constexpr std::uint32_t SetOf(Types... types) noexcept {
  return ((1U << static_cast<unsigned>(types)) | ...);
}
constexpr std::uint32_t kIntegers = SetOf(FieldType::Int16, FieldType::Int32, FieldType::Int64, FieldType::AutoInc);
constexpr std::uint32_t kMoments = SetOf(FieldType::Date, FieldType::Time, FieldType::DateTime);

}  // namespace

bool DatasetView::GetBool(RowId row, FieldSelector field) const {
  return Read(row, field, SetOf(FieldType::Boolean)).bits != 0;
}

std::int64_t DatasetView::GetInt64(RowId row, FieldSelector field) const {
  return static_cast<std::int64_t>(Read(row, field, kIntegers).bits);
}

double DatasetView::GetDouble(RowId row, FieldSelector field) const {
  return std::bit_cast<double>(Read(row, field, SetOf(FieldType::Double)).bits);
}

Currency DatasetView::GetCurrency(RowId row, FieldSelector field) const {
  return Currency::FromRaw(static_cast<std::int64_t>(Read(row, field, SetOf(FieldType::Currency)).bits));
}

DateTime DatasetView::GetDateTime(RowId row, FieldSelector field) const {
  const Cell cell = Read(row, field, kMoments);
  const FieldType type = contents_->columns[Resolve(*contents_, field)].type;
  return cell.isNull ? DateTime() : std::get<DateTime>(store::ViewOf(type, cell).Get());
}

TextView DatasetView::GetText(RowId row, FieldSelector field) const {
  return Read(row, field, SetOf(FieldType::Text, FieldType::Memo)).bytes;
}

std::u16string_view DatasetView::GetWideText(RowId row, FieldSelector field) const {
  const Cell cell = Read(row, field, SetOf(FieldType::WideText));
  return cell.isNull ? std::u16string_view()
                     : std::get<std::u16string_view>(store::ViewOf(FieldType::WideText, cell).Get());
}

Guid DatasetView::GetGuid(RowId row, FieldSelector field) const {
  const Cell cell = Read(row, field, SetOf(FieldType::Guid));
  return cell.isNull ? Guid() : std::get<Guid>(store::ViewOf(FieldType::Guid, cell).Get());
}

BytesView DatasetView::GetBytes(RowId row, FieldSelector field) const {
  const Cell cell = Read(row, field, SetOf(FieldType::Blob, FieldType::Memo));
  return cell.isNull ? BytesView() : std::get<BytesView>(store::ViewOf(FieldType::Blob, cell).Get());
}

ValueView DatasetView::View(RowId row, FieldSelector field) const {
  const std::size_t index = Resolve(*contents_, field);
  return store::ViewOf(contents_->columns[index].type, contents_->Read(RequireRow(*contents_, row), index));
}

Value DatasetView::Get(RowId row, FieldSelector field) const {
  const std::size_t index = Resolve(*contents_, field);
  return store::ValueOf(contents_->columns[index].type, contents_->Read(RequireRow(*contents_, row), index));
}

Value DatasetView::Original(RowId row, FieldSelector field) const {
  const std::size_t index = Resolve(*contents_, field);
  const std::uint32_t number = RequireRow(*contents_, row, true);
  if (contents_->StateOf(number) == StoredState::Inserted) {
    RefuseRow(*contents_, number, " este nou si nu are valori initiale");
  }
  return store::ValueOf(contents_->columns[index].type, contents_->ReadOriginal(number, index));
}

}  // namespace kiv
