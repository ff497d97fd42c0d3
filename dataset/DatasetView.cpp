#include "core/Calendar.h"
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

[[noreturn, gnu::cold, gnu::noinline]] void RefuseRow(const Contents& contents, std::uint32_t row, TextView why) {
  Text message = contents.owner + ": randul ";
  AppendDecimal(message, row);
  throw Error(message.append(why));
}

[[noreturn, gnu::cold, gnu::noinline]] void RefuseState(const Contents& contents, std::uint32_t row) {
  const bool isDeleted = row < contents.rowCount && contents.StateOf(row) == StoredState::Deleted;
  RefuseRow(contents, row, isDeleted ? " este sters" : " nu exista");
}

/// The row's number. Throws for one that is not there.
inline std::uint32_t RequireRow(const Contents& contents, RowId id, bool mayBeDeleted = false) {
  const auto row = static_cast<std::uint32_t>(id);
  const StoredState mostAllowed = mayBeDeleted ? StoredState::Deleted : StoredState::Modified;
  if (row >= contents.rowCount || contents.StateOf(row) > mostAllowed) [[unlikely]] {
    RefuseState(contents, row);
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

std::size_t DatasetView::ResolveName(const Contents& contents, FieldSelector field) {
  if ((field.size_ & FieldSelector::kIsReference) != 0) {
    throw Error(contents.owner + ": campul este al altui set de date");
  }
  const TextView name(static_cast<const char*>(field.owner_), field.size_);
  const auto found = contents.schemaData->IndexOf(name);
  if (!found) {
    throw Error(contents.owner + ": campul " + store::Quoted(name) + " nu exista");
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

std::optional<RowId> DatasetView::NextRow(std::optional<RowId> after) const noexcept {
  const std::uint32_t from = after ? static_cast<std::uint32_t>(*after) + 1 : 0;
  const std::uint32_t row = RowRange::Next(contents_, from, kPresent);
  return row == RowRange::kEnd ? std::nullopt : std::optional(static_cast<RowId>(row));
}

std::size_t DatasetView::ChangeCount() const noexcept {
  return contents_->log.Count();
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

namespace {

[[noreturn, gnu::cold, gnu::noinline]] void RefuseType(const Contents& contents, std::size_t field) {
  throw InvalidCast(contents.owner + ": campul " + store::Quoted(contents.schemaData->fields[field].name) +
                    " este de tip " + store::TraitsOf(contents.columns[field].type).name +
                    " si nu se citeste ca alt fel de valoare");
}

template <class... Types>
constexpr std::uint32_t SetOf(Types... types) noexcept {
  return ((1U << static_cast<unsigned>(types)) | ...);
}
constexpr std::uint32_t kIntegers = SetOf(FieldType::Int16, FieldType::Int32, FieldType::Int64, FieldType::AutoInc);
constexpr std::uint32_t kMoments = SetOf(FieldType::Date, FieldType::Time, FieldType::DateTime);
constexpr std::uint32_t kByteTypes = SetOf(FieldType::Blob, FieldType::Memo);

constexpr std::uint32_t NumberOf(RowId row) noexcept {
  return static_cast<std::uint32_t>(row);
}

}  // namespace

// The getters read elements straight from their column: whoever goes through rows waits for memory, and the less there
// is around each wait, the more of them run side by side.

inline const store::Column& DatasetView::Locate(RowId row, FieldSelector field, TypeSet types) const {
  const std::size_t index = Resolve(*contents_, field);
  const store::Column& column = contents_->columns[index];
  if ((types >> static_cast<unsigned>(column.type) & 1U) == 0) [[unlikely]] {
    RefuseType(*contents_, index);
  }
  RequireRow(*contents_, row);
  return column;
}

bool DatasetView::GetBool(RowId row, FieldSelector field) const {
  const store::Column& column = Locate(row, field, SetOf(FieldType::Boolean));
  return column.values.BitAt(NumberOf(row));
}

std::int64_t DatasetView::GetInt64(RowId row, FieldSelector field) const {
  const store::Column& column = Locate(row, field, kIntegers);
  switch (column.values.ElementWidth()) {
    case store::Plane::Width::Two:
      return column.values.At<std::int16_t>(NumberOf(row));
    case store::Plane::Width::Four:
      return column.values.At<std::int32_t>(NumberOf(row));
    default:
      return column.values.At<std::int64_t>(NumberOf(row));
  }
}

double DatasetView::GetDouble(RowId row, FieldSelector field) const {
  return Locate(row, field, SetOf(FieldType::Double)).values.At<double>(NumberOf(row));
}

Currency DatasetView::GetCurrency(RowId row, FieldSelector field) const {
  const store::Column& column = Locate(row, field, SetOf(FieldType::Currency));
  return Currency::FromRaw(column.values.At<std::int64_t>(NumberOf(row)));
}

DateTime DatasetView::GetDateTime(RowId row, FieldSelector field) const {
  const store::Column& column = Locate(row, field, kMoments);
  if (column.type == FieldType::DateTime) {
    return MomentOf(column.values.At<std::int64_t>(NumberOf(row)));
  }
  const auto element = column.values.At<std::int32_t>(NumberOf(row));
  return column.type == FieldType::Date ? DateTime(element) : MomentOf(element);
}

TextView DatasetView::GetText(RowId row, FieldSelector field) const {
  const store::Column& column = Locate(row, field, SetOf(FieldType::Text, FieldType::Memo));
  if (column.IsNull(NumberOf(row))) {
    return {};
  }
  const auto code = column.values.At<std::uint32_t>(NumberOf(row));
  return column.type == FieldType::Text ? column.texts.Read(code, contents_->large) : contents_->large.At(code);
}

std::u16string_view DatasetView::GetWideText(RowId row, FieldSelector field) const {
  const store::Column& column = Locate(row, field, SetOf(FieldType::WideText));
  if (column.IsNull(NumberOf(row))) {
    return {};
  }
  const std::string_view bytes = column.texts.Read(column.values.At<std::uint32_t>(NumberOf(row)), contents_->large);
  return {reinterpret_cast<const char16_t*>(bytes.data()), bytes.size() / sizeof(char16_t)};
}

Guid DatasetView::GetGuid(RowId row, FieldSelector field) const {
  const Cell cell = Locate(row, field, SetOf(FieldType::Guid)).Load(NumberOf(row));
  return cell.isNull ? Guid() : std::get<Guid>(store::ViewOf(FieldType::Guid, cell).Get());
}

BytesView DatasetView::GetBytes(RowId row, FieldSelector field) const {
  const store::Column& column = Locate(row, field, kByteTypes);
  if (column.IsNull(NumberOf(row))) {
    return {};
  }
  const std::string_view bytes = contents_->large.At(column.values.At<std::uint32_t>(NumberOf(row)));
  return {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()};
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
