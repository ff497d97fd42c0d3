/// @file
/// Cursor: a place among the rows of a dataset in an order of its own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <span>
#include <vector>

#include "kivtools/Export.h"
#include "kivtools/Types.h"
#include "kivtools/dataset/Dataset.h"
#include "kivtools/dataset/Filter.h"

namespace kiv {

namespace query {
class CursorState;
}  // namespace query

/// Where a cursor was. It stays good while rows come and go; after Compact() and for another copy of the dataset, say
/// the same file read again, it finds its row by the key.
class CursorBookmark {
 public:
  /// The row, as it was numbered then.
  [[nodiscard]] RowId Row() const noexcept { return row_; }
  /// The values of the key's fields; empty where the dataset has no key.
  [[nodiscard]] const std::vector<Value>& Key() const noexcept { return key_; }

 private:
  friend class query::CursorState;
  const void* owner_ = nullptr;
  std::uint32_t numbering_ = 0;
  RowId row_{};
  std::vector<Value> key_;
};

/// Stands on a row of a dataset, before the first or behind the last, and goes from row to row in an order. Several
/// cursors may stand in one dataset; a copy is a clone that stands where the other does. Each follows every edit,
/// whoever makes it, also those that are taken back:
///
/// - its row changes its place in the order: the cursor goes with it;
/// - its row is deleted, leaves the range or does not pass the filter any more: the cursor stands on the row that came
/// after it, behind the last if there
///   was none; when an undo brings the row back the cursor stays where it is;
/// - rows are loaded or Compact() numbers them anew: it stays on its row.
///
/// Everything throws Error when the dataset is gone, and std::bad_alloc where an order cannot be built; an operation
/// that throws has changed nothing.
///
///     Cursor cursor(linii);
///     cursor.OrderBy("partener, data desc");
///     for (cursor.First(); !cursor.AtEnd(); cursor.Next()) Print(cursor.GetText("partener"));
class Cursor {
 public:
  /// Before the first of all rows, in the order of their numbers.
  KIV_API explicit Cursor(Dataset& dataset);
  KIV_API ~Cursor();
  /// A clone, without the edit that the other may have open.
  KIV_API Cursor(const Cursor& other);
  KIV_API Cursor& operator=(const Cursor& other);
  KIV_API Cursor(Cursor&& other) noexcept;
  KIV_API Cursor& operator=(Cursor&& other) noexcept;

  /// Orders by fields, the first of which counts most: their names, each with `desc`, with `ro`, `nocase` or `binary`
  /// in place of the field's own collation, and with `nulls last`; nulls come first otherwise, also in descending
  /// order. Rows that are equal stand in the order of their numbers; so do all for an empty text. The cursor stays on
  /// its row; its range ends. The first cursor of an order builds the index of it, all others of the same order share
  /// it, and it follows every edit. Throws Error naming what is not understood, and for a Blob.
  ///
  ///     cursor.OrderBy("partener nocase, data desc nulls last");
  KIV_API void OrderBy(TextView order);
  /// The order; what its fields have anyway is left out. Example: "partener nocase, data desc nulls last".
  [[nodiscard]] KIV_API Text Order() const;

  /// From now on there are only the rows that pass a condition, which docs/filters.md describes, as they come to pass
  /// it and cease to. The cursor stays on its row, or stands before the first if that does not pass. Throws FilterError
  /// for a text that is no condition and for a row in which it has no value; where an edit gives such a row, the next
  /// use of the cursor throws, until another edit has put it right.
  ///
  ///     cursor.Filter("suma > :prag", {{"prag", 1000_lei}});
  KIV_API void Filter(TextView condition, const FilterParameters& parameters = {});
  /// Ends the filter. Example: `Count()` is RowCount() of the dataset afterwards.
  KIV_API void ClearFilter();

  /// Goes to the first row; false, and behind the last, if there is none. This and all that moves throws Error while an
  /// edit is open.
  KIV_API bool First();
  /// Goes to the last row; false, and before the first, if there is none.
  KIV_API bool Last();
  /// Goes to the next row; false behind the last. From before the first it goes to the first:
  /// `while (cursor.Next()) ...` sees every row.
  KIV_API bool Next();
  /// Goes to the row before; false before the first.
  KIV_API bool Prior();
  /// Whether it stands behind the last row.
  [[nodiscard]] KIV_API bool AtEnd() const;
  /// Whether it stands before the first row.
  [[nodiscard]] KIV_API bool AtStart() const;

  /// Goes to the first row, in the cursor's order, whose fields have these values, texts equal in their field's
  /// collation; false, and nowhere else, if there is none. Where the fields are the first of the order it takes some
  /// twenty comparisons, otherwise it looks at all rows. Throws as Dataset::Insert for a value that the field cannot
  /// hold.
  ///
  ///     cursor.Locate({{"partener", "Şapte Arini"_ro}})
  KIV_API bool Locate(std::initializer_list<FieldValue> values);
  /// The same from values collected at run time.
  KIV_API bool Locate(std::span<const FieldValue> values);
  /// Goes to the first row that is not before these values of the first fields of the order; false, and behind the
  /// last, if there is none. Throws Error for more values than the order has fields.
  ///
  ///     cursor.LocateNearest({"S"})   // the first partner from S on
  KIV_API bool LocateNearest(std::initializer_list<ValueView> values);
  /// The same from values collected at run time.
  KIV_API bool LocateNearest(std::span<const ValueView> values);
  /// From now on there are only the rows from `from` to `to`, both with what is equal to them, by values of the first
  /// fields of the order; an empty list sets no limit. In descending order `from` is the greater. The cursor stays on
  /// its row, or stands before the first if that is outside. Throws as LocateNearest.
  ///
  ///     cursor.OrderBy("data");
  ///     cursor.SetRange({DateTime::Encode(2026, 1, 1)}, {DateTime::Encode(2026, 1, 31)});   // January
  KIV_API void SetRange(std::initializer_list<ValueView> from, std::initializer_list<ValueView> to);
  /// The same from values collected at run time.
  KIV_API void SetRange(std::span<const ValueView> from, std::span<const ValueView> to);
  /// Ends the range. Example: `Count()` is RowCount() of the dataset afterwards.
  KIV_API void ClearRange();

  /// How many rows there are in the range.
  [[nodiscard]] KIV_API std::size_t Count();
  /// The place of the cursor's row in the order, from 0 at the beginning of the range. Throws Error on no row.
  [[nodiscard]] KIV_API std::size_t Position();
  /// Goes to the row at that place. Throws ListIndexError from Count() on. Example: `GoTo(Count() / 2)`.
  KIV_API void GoTo(std::size_t position);
  /// Goes to a row; false, and nowhere else, if it is deleted or outside of the range.
  KIV_API bool GoTo(RowId row);
  /// Goes back to where a cursor was; false, and nowhere else, if that row is no more or outside of the range.
  KIV_API bool GoTo(const CursorBookmark& bookmark);
  /// Notes where it stands. Throws Error on no row.
  [[nodiscard]] KIV_API CursorBookmark Bookmark() const;
  /// The row that it stands on. Throws Error on no row.
  [[nodiscard]] KIV_API RowId Row() const;

  /// The field at that place of the dataset's schema, from 0. Throws ListIndexError beyond the last.
  [[nodiscard]] KIV_API FieldRef FieldAt(std::size_t index) const;

  // The getters give what those of DatasetView give for Row(); while an edit is open the values that it proposes.

  [[nodiscard]] KIV_API bool IsNull(FieldSelector field) const;
  [[nodiscard]] KIV_API bool GetBool(FieldSelector field) const;
  [[nodiscard]] KIV_API std::int64_t GetInt64(FieldSelector field) const;
  [[nodiscard]] KIV_API double GetDouble(FieldSelector field) const;
  [[nodiscard]] KIV_API Currency GetCurrency(FieldSelector field) const;
  [[nodiscard]] KIV_API DateTime GetDateTime(FieldSelector field) const;
  [[nodiscard]] KIV_API TextView GetText(FieldSelector field) const;
  [[nodiscard]] KIV_API std::u16string_view GetWideText(FieldSelector field) const;
  [[nodiscard]] KIV_API Guid GetGuid(FieldSelector field) const;
  [[nodiscard]] KIV_API BytesView GetBytes(FieldSelector field) const;
  /// Of any field, borrowed: proposed values until the next Set, Post or Cancel, others as long as the dataset's are.
  [[nodiscard]] KIV_API ValueView View(FieldSelector field) const;
  /// Of any field. Example: `cursor.Get("suma") == Value(10_lei)`.
  [[nodiscard]] KIV_API Value Get(FieldSelector field) const;

  /// Opens an edit of the cursor's row. Throws Error on no row and while an edit is open.
  ///
  ///     cursor.Edit();
  ///     cursor.Set("suma", 10_lei);
  ///     cursor.Post();
  KIV_API void Edit();
  /// Opens an edit of a row that is to be. Throws Error while an edit is open.
  KIV_API void Insert();
  /// Proposes a value. Throws Error where no edit is open, and as Dataset::Insert for a value that the field cannot
  /// hold.
  KIV_API void Set(FieldSelector field, ValueView value);
  /// Posts what is proposed as Dataset::Update or Insert does, and throws as they do; the edit is open still then.
  /// After an insertion the cursor stands on the new row if that is in the range.
  KIV_API void Post();
  /// Forgets what is proposed. Without an open edit it does nothing.
  KIV_API void Cancel() noexcept;
  /// Whether an edit is open.
  [[nodiscard]] KIV_API bool IsEditing() const noexcept;
  /// Deletes the cursor's row; it stands on the one after it then. Throws Error on no row and while an edit is open.
  KIV_API void Delete();

 private:
  std::unique_ptr<query::CursorState> state_;
};

}  // namespace kiv
