#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "dataset/store/Column.h"
#include "dataset/store/Log.h"
#include "kivtools/dataset/Dataset.h"

namespace kiv::query {
class CalculatedColumns;
}  // namespace kiv::query

/// What a dataset is made of, and how the library's other parts read it.
///
/// A writer of files takes a copy of the contents first: a copy shares all memory with the original, costs a few
/// pointers a block of 8,192 rows, and stays as it was while the dataset is edited, also by another thread. Then, for
/// rows in blocks of 8,192:
///
///     for (std::uint32_t block = 0; block < contents.BlockCount(); ++block) {
///       contents.RowsIn(block);                              // 8,192, fewer in the last
///       contents.states.BlockBytes(block);                   // a byte a row (StoredState)
///       for (const Column& column : contents.columns) {
///         column.nulls.BlockBytes(block);                    // a bit a row, from the lowest
///         column.values.BlockBytes(block);                   // the elements: TraitsOf(column.type).width each
///         column.more.BlockBytes(block);                     // of a Guid the second halves
///       }
///     }
///
/// - Each gives what has memory, which may be more or less than the rows of the block: what is beyond the bytes is zero
///   (Unmodified, not null), what is beyond the rows is undefined. Values always have memory for all rows.
/// - Elements are little-endian: integers, days, milliseconds, raw amounts, doubles; bits of a Boolean from the lowest;
///   of a Guid the first halves as numbers whose order is that of the text form. Of a null the element is zero.
/// - A Text or WideText holds codes. `column.texts.HasDictionary()`: they count the entries from 0 to EntryCount() - 1,
///   which `texts.Read(code, contents.large)` gives; entries that no row uses may be among them. Otherwise they are
///   places in the heap, and equal texts may have several: write the text of each row.
/// - A Memo or Blob holds numbers of `contents.large`. A number that no row and no record uses may be left out.
/// - Rows whose state is Gone are no rows any more. A gone row that a record of the log names has to be kept, so that
///   the log can be rolled back; the others may be left out if the rest is numbered anew.
/// - The log: `for (auto at = log.First(); at != Log::kNone; at = log.Next(at))`, HeaderAt(at), and RecordReader for
/// the
///   old values, which are codes and numbers too; `Resolve` turns one into bytes.
///
/// What is read back goes through BlockLoader, which checks everything that a post would have checked.
namespace kiv::store {

/// One more row than this has no number.
inline constexpr std::uint32_t kMostRows = 0x7FFFFFFE;

/// Every member of Contents, to be copied one by one.
struct ContentsMembers : ContentsHead {
  ContentsMembers(TextView datasetName, const Schema& datasetSchema);

  [[nodiscard]] const SchemaData& GetSchemaData() const noexcept { return *schemaData; }
  [[nodiscard]] std::uint32_t BlockCount() const noexcept { return (rowCount + kBlockRows - 1) / kBlockRows; }
  [[nodiscard]] std::uint32_t RowsIn(std::uint32_t block) const noexcept {
    const std::uint32_t left = rowCount - block * kBlockRows;
    return left < kBlockRows ? left : kBlockRows;
  }
  /// The cell with the bytes that its code or number stands for.
  [[nodiscard]] Cell Resolve(std::size_t field, Cell cell) const noexcept;
  /// The present value, also that of a deleted row.
  [[nodiscard]] Cell Read(std::uint32_t row, std::size_t field) const noexcept {
    return Resolve(field, columns[field].Load(row));
  }
  /// The original value of a row that has one.
  [[nodiscard]] Cell ReadOriginal(std::uint32_t row, std::size_t field) const noexcept;
  /// The number of the row's copied originals, kNone if nothing of it has changed.
  [[nodiscard]] std::uint32_t ShadowOf(std::uint32_t row) const noexcept {
    return shadows.AtOrZero<std::uint32_t>(row) - 1;
  }
  /// The position of the row's last change record, Log::kNone if it has none.
  [[nodiscard]] std::uint32_t LastRecordOf(std::uint32_t row) const noexcept {
    return heads.AtOrZero<std::uint32_t>(row) - 1;
  }
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;

  Text name;
  /// `Dataset "linii"`, with which messages begin.
  Text owner;
  /// A copy that no other dataset shares, so that its address tells whose a field reference is.
  Schema schema;

  std::array<std::uint32_t, kStates> counts{};
  std::vector<Column> columns;
  LargeValues large;

  Log log;
  Plane heads{Plane::Width::Four, Plane::Filled::Zeros};  ///< last record + 1
  /// Rows as they were before their first change, in the order of those changes; codes are those of `columns`.
  std::vector<ColumnPlanes> originals;
  std::uint32_t shadowCount = 0;
  Plane shadows{Plane::Width::Four, Plane::Filled::Zeros};  ///< number of the copy + 1

  /// Those of a dataset that has some; a copy has none.
  std::shared_ptr<const query::CalculatedColumns> calculated;

  /// What the next AutoInc gets.
  std::int64_t nextTemporary = -1;
};

/// A copy's getters read its own columns.
struct Contents : ContentsMembers {
  Contents(TextView datasetName, const Schema& datasetSchema) : ContentsMembers(datasetName, datasetSchema) {
    FindColumnHeads();
  }
  Contents(const Contents& other) : ContentsMembers(other) { FindColumnHeads(); }
  Contents(Contents&&) noexcept = default;
  Contents& operator=(const Contents&) = delete;
  Contents& operator=(Contents&&) noexcept = default;
  ~Contents() = default;

 private:
  void FindColumnHeads() {
    columnHeads.clear();
    for (const Column& column : columns) {
      columnHeads.push_back(&column);
    }
  }
};

/// The place of the field of that name. Throws Error where there is none.
std::size_t RequireField(const Contents& contents, TextView name);
/// Throws Error: what is wrong with the row.
[[noreturn]] void RefuseRow(const Contents& contents, std::uint32_t row, TextView why);
/// The row's number. Throws Error for one that is not there.
std::uint32_t RequireRow(const Contents& contents, RowId id, bool mayBeDeleted = false);

}  // namespace kiv::store

namespace kiv {

inline const store::Contents& DatasetView::GetContents() const noexcept {
  return static_cast<const store::Contents&>(*head_);
}

inline Snapshot::Snapshot(std::shared_ptr<const store::Contents> contents) noexcept
    : DatasetView(contents.get()), owned_(std::move(contents)) {}

inline std::size_t DatasetView::Resolve(const store::Contents& contents, FieldSelector field) {
  return field.owner_ == contents.schemaData ? field.size_ & ~FieldSelector::kIsReference
                                             : ResolveName(contents, field);
}

}  // namespace kiv
