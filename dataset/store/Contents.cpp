#include "dataset/store/Contents.h"

#include "core/Numbers.h"
#include "dataset/store/SchemaData.h"

namespace kiv::store {

ContentsMembers::ContentsMembers(TextView datasetName, const Schema& datasetSchema)
    : name(datasetName),
      owner("Dataset " + Quoted(datasetName)),
      schema(std::vector<FieldDef>(datasetSchema.Fields().begin(), datasetSchema.Fields().end())) {
  schemaData = &SchemaData::Of(schema);
  if (!IsIdentifier(name)) {
    throw Error(owner + ": numele nu este permis");
  }
  for (const FieldDef& field : schema.Fields()) {
    columns.emplace_back(field.type);
    originals.emplace_back(field.type);
  }
}

Cell ContentsMembers::Resolve(std::size_t field, Cell cell) const noexcept {
  if (!cell.isNull) {
    const Column& column = columns[field];
    const Storage storage = TraitsOf(column.type).storage;
    const auto number = static_cast<std::uint32_t>(cell.bits);
    if (storage == Storage::Texts) {
      cell.bytes = column.texts.Read(number, large);
    } else if (storage == Storage::Large) {
      cell.bytes = large.At(number);
    }
  }
  return cell;
}

Cell ContentsMembers::ReadOriginal(std::uint32_t row, std::size_t field) const noexcept {
  const std::uint32_t shadow = ShadowOf(row);
  return shadow == kNone ? Read(row, field) : Resolve(field, originals[field].Load(shadow));
}

std::size_t RequireField(const Contents& contents, TextView name) {
  const auto found = contents.schemaData->IndexOf(name);
  if (!found) {
    throw Error(contents.owner + ": campul " + Quoted(name) + " nu exista");
  }
  return *found;
}

void RefuseRow(const Contents& contents, std::uint32_t row, TextView why) {
  Text message = contents.owner + ": randul ";
  AppendDecimal(message, row);
  throw Error(message.append(why));
}

namespace {

[[noreturn]] void RefuseState(const Contents& contents, std::uint32_t row) {
  const bool isDeleted = row < contents.rowCount && contents.StateOf(row) == StoredState::Deleted;
  RefuseRow(contents, row, isDeleted ? " este sters" : " nu exista");
}

}  // namespace

std::uint32_t RequireRow(const Contents& contents, RowId id, bool mayBeDeleted) {
  const auto row = static_cast<std::uint32_t>(id);
  const bool isThere =
      mayBeDeleted ? row < contents.rowCount && contents.StateOf(row) < StoredState::Gone : contents.IsPresent(row);
  if (!isThere) {
    RefuseState(contents, row);
  }
  return row;
}

}  // namespace kiv::store
