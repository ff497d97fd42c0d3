/// @file
/// Dataset: typed rows in memory, in columns, with every change remembered.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "kivtools/Export.h"
#include "kivtools/Types.h"
#include "kivtools/dataset/Changes.h"
#include "kivtools/dataset/Row.h"
#include "kivtools/dataset/Schema.h"
#include "kivtools/dataset/Value.h"
#include "kivtools/dataset/store/Heads.h"

namespace kiv {

namespace store {
struct Contents;
class Store;
}  // namespace store
namespace query {
class CursorState;
}  // namespace query

/// A field of one dataset, looked up once by `Field(name)`. A dataset refuses a reference from another one; it may
/// outlive its dataset, but not be used then.
class FieldRef {
 public:
  /// The field's place in the schema, from 0.
  [[nodiscard]] constexpr std::size_t Index() const noexcept { return index_; }

 private:
  friend class DatasetView;
  friend class FieldSelector;
  constexpr FieldRef(const void* owner, std::uint16_t index) noexcept : owner_(owner), index_(index) {}
  const void* owner_;
  std::uint16_t index_;
};

/// A field as an argument: its reference, or its name, which is looked up at each call.
class FieldSelector {
 public:
  // Implicit, so that either form is written as it is.
  constexpr FieldSelector(FieldRef field) noexcept  // NOLINT
      : owner_(field.owner_), size_(kIsReference | field.index_) {}
  template <class Characters>
  requires std::convertible_to<const Characters&, TextView>
  constexpr FieldSelector(const Characters& name) noexcept  // NOLINT
      : FieldSelector(Named{}, static_cast<TextView>(name)) {}

 private:
  friend class DatasetView;
  struct Named {};
  static constexpr std::size_t kIsReference = ~(~std::size_t{0} >> 1U);
  constexpr FieldSelector(Named /*tag*/, TextView name) noexcept : owner_(name.data()), size_(name.size()) {}

  // Two words, which are passed in registers: of a reference the dataset and the place, of a name where it is.
  const void* owner_;
  std::size_t size_;
};

/// A field and the value it is to get. Example: `{"suma", 1234.56_lei}`.
struct FieldValue {
  FieldSelector field;
  ValueView value;
};

/// The rows of a dataset in their order, for a `for` loop; rows may be changed and added meanwhile.
class RowRange {
 public:
  class Iterator {
   public:
    using value_type = RowId;              // NOLINT: the names that the language's algorithms look for
    using difference_type = std::int64_t;  // NOLINT
    [[nodiscard]] RowId operator*() const noexcept { return static_cast<RowId>(row_); }
    Iterator& operator++() noexcept {
      row_ = Next(contents_, row_ + 1, states_);
      return *this;
    }
    Iterator operator++(int) noexcept {
      Iterator before = *this;
      ++*this;
      return before;
    }
    friend bool operator==(const Iterator& left, const Iterator& right) noexcept { return left.row_ == right.row_; }

   private:
    friend class RowRange;
    const store::ContentsHead* contents_ = nullptr;
    std::uint32_t row_ = kEnd;
    std::uint8_t states_ = 0;
  };

  [[nodiscard]] Iterator begin() const noexcept {
    Iterator first;
    first.contents_ = contents_;
    first.states_ = states_;
    first.row_ = Next(contents_, 0, states_);
    return first;
  }
  [[nodiscard]] Iterator end() const noexcept { return {}; }

 private:
  friend class DatasetView;
  static constexpr std::uint32_t kEnd = 0xFFFFFFFF;
  KIV_API static std::uint32_t Next(const store::ContentsHead* contents, std::uint32_t from,
                                    std::uint8_t states) noexcept;
  RowRange(const store::ContentsHead* contents, std::uint8_t states) noexcept : contents_(contents), states_(states) {}
  const store::ContentsHead* contents_;
  std::uint8_t states_;
};

/// What a dataset and a snapshot of one have in common: everything that reads.
///
/// A getter throws Error, naming dataset and row, for a row that does not exist or is deleted, Error for a field that
/// the dataset does not have, and InvalidCast for a field of a type that the getter does not give. Where the value is
/// null it gives zero, false or an empty text; IsNull() and Get() tell the difference. Texts and bytes are borrowed:
/// they stay where they are until Compact() or the end of the dataset, whatever happens to their row; those of a
/// calculated column only until that is read again or a dataset that it looks up in ends or is compacted.
class DatasetView {
 public:
  /// The dataset's name. Example: "linii".
  [[nodiscard]] KIV_API TextView Name() const noexcept;
  /// Its fields.
  [[nodiscard]] KIV_API const Schema& GetSchema() const noexcept;
  /// The field or calculated column of that name, case apart. Throws Error where there is none. Example:
  /// `linii.Field("suma")`.
  [[nodiscard]] KIV_API FieldRef Field(TextView name) const;
  /// The field at that place of the schema, from 0; behind the last one the calculated columns follow. Throws
  /// ListIndexError beyond the last of them.
  [[nodiscard]] KIV_API FieldRef FieldAt(std::size_t index) const;

  /// How many rows there are, deleted ones not counted.
  [[nodiscard]] KIV_API std::size_t RowCount() const noexcept;
  /// How many rows have that state. Example: `CountOf(RowState::Deleted)` is 1 after a Delete of a loaded row.
  [[nodiscard]] KIV_API std::size_t CountOf(RowState state) const noexcept;
  /// The rows, deleted ones left out. Example: `for (RowId row : linii.Rows()) sum += linii.GetCurrency(row, suma);`
  [[nodiscard]] KIV_API RowRange Rows() const noexcept;
  /// The rows of one state. Example: `Rows(RowState::Deleted)`.
  [[nodiscard]] KIV_API RowRange Rows(RowState state) const noexcept;
  /// The row after another one, or the first, deleted ones left out; empty after the last. Example: `NextRow({})`.
  [[nodiscard]] KIV_API std::optional<RowId> NextRow(std::optional<RowId> after) const noexcept;
  /// Whether the number is that of a row, be it deleted.
  [[nodiscard]] KIV_API bool Exists(RowId row) const noexcept;
  /// The row's state. Throws Error for a row that does not exist.
  [[nodiscard]] KIV_API RowState State(RowId row) const;

  /// Whether the field is null in that row.
  [[nodiscard]] bool IsNull(RowId row, FieldSelector field) const;
  /// Of a Boolean.
  [[nodiscard]] bool GetBool(RowId row, FieldSelector field) const;
  /// Of an Int16, Int32, Int64 or AutoInc.
  [[nodiscard]] std::int64_t GetInt64(RowId row, FieldSelector field) const;
  /// Of a Double.
  [[nodiscard]] double GetDouble(RowId row, FieldSelector field) const;
  /// Of a Currency. Example: `linii.GetCurrency(row, "suma")` is 1234.56_lei.
  [[nodiscard]] Currency GetCurrency(RowId row, FieldSelector field) const;
  /// Of a Date, Time or DateTime.
  [[nodiscard]] DateTime GetDateTime(RowId row, FieldSelector field) const;
  /// Of a Text or Memo.
  [[nodiscard]] TextView GetText(RowId row, FieldSelector field) const;
  /// Of a WideText.
  [[nodiscard]] KIV_API std::u16string_view GetWideText(RowId row, FieldSelector field) const;
  /// Of a Guid.
  [[nodiscard]] KIV_API Guid GetGuid(RowId row, FieldSelector field) const;
  /// Of a Blob, and of a Memo as bytes.
  [[nodiscard]] KIV_API BytesView GetBytes(RowId row, FieldSelector field) const;
  /// Of any field, borrowed as texts are. Example: `std::get<Currency>(linii.View(row, "suma").Get())`.
  [[nodiscard]] KIV_API ValueView View(RowId row, FieldSelector field) const;
  /// Of any field. Example: `linii.Get(row, "suma") == Value(1234.56_lei)`.
  [[nodiscard]] KIV_API Value Get(RowId row, FieldSelector field) const;
  /// How many changes the log remembers; 0 after they were accepted.
  [[nodiscard]] KIV_API std::size_t ChangeCount() const noexcept;
  /// The value that the row had when it was loaded or last accepted; also of deleted rows. Throws Error for an inserted
  /// row, which had none. Example: 1234.56_lei after `Set(row, "suma", 1500_lei)`.
  [[nodiscard]] KIV_API Value Original(RowId row, FieldSelector field) const;

  /// For the library's own parts.
  [[nodiscard]] const store::Contents& GetContents() const noexcept;

 protected:
  explicit DatasetView(const store::ContentsHead* contents) noexcept : head_(contents) {}
  DatasetView(const DatasetView&) = default;
  DatasetView& operator=(const DatasetView&) = default;
  ~DatasetView() = default;

  static constexpr std::uint32_t NumberOf(RowId row) noexcept { return static_cast<std::uint32_t>(row); }

  const store::ContentsHead* head_;

 private:
  friend class Dataset;
  friend class query::CursorState;
  friend class store::Store;
  /// A bit for each FieldType.
  using TypeSet = std::uint32_t;
  template <class... Types>
  static constexpr TypeSet SetOf(Types... types) noexcept {
    return ((1U << static_cast<unsigned>(types)) | ...);
  }
  /// The place of the field. Throws Error for a name that is none and for another dataset's reference.
  [[nodiscard]] static std::size_t Resolve(const store::Contents& contents, FieldSelector field);
  [[nodiscard]] static std::size_t ResolveName(const store::Contents& contents, FieldSelector field);
  /// The same, also for a calculated column: they are counted behind the fields.
  [[nodiscard]] static std::size_t ResolveAny(const store::Contents& contents, FieldSelector field);
  /// What a reference to a calculated column has in place of the dataset.
  [[nodiscard]] static const void* CalculatedOwner(const store::Contents& contents) noexcept;

  /// Where a value lies: that of a calculated column has been put there.
  struct Location {
    const store::ColumnHead* column;
    std::uint32_t row;
    bool isCalculated;
  };
  /// The value of a field whose type is among `types`. Throws as a getter does.
  [[nodiscard]] Location Locate(RowId row, FieldSelector field, TypeSet types) const {
    if (field.owner_ == head_->schemaData && head_->IsPresent(NumberOf(row))) [[likely]] {
      const store::ColumnHead& column = *head_->columnHeads[field.size_ & ~FieldSelector::kIsReference];
      if ((types >> static_cast<unsigned>(column.type) & 1U) != 0) [[likely]] {
        return {&column, NumberOf(row), false};
      }
    }
    return LocateOrRefuse(row, field, types);
  }
  [[nodiscard]] KIV_API Location LocateOrRefuse(RowId row, FieldSelector field, TypeSet types) const;
  [[nodiscard]] KIV_API static DateTime MomentAt(const store::ColumnHead& column, std::uint32_t row) noexcept;
  [[nodiscard]] KIV_API TextView TextAt(const Location& found) const noexcept;
};

inline bool DatasetView::IsNull(RowId row, FieldSelector field) const {
  const Location found = Locate(row, field, ~TypeSet{0});
  return found.column->IsNull(found.row);
}

inline bool DatasetView::GetBool(RowId row, FieldSelector field) const {
  const Location found = Locate(row, field, SetOf(FieldType::Boolean));
  return found.column->values.BitAt(found.row);
}

inline std::int64_t DatasetView::GetInt64(RowId row, FieldSelector field) const {
  constexpr TypeSet kIntegers = SetOf(FieldType::Int16, FieldType::Int32, FieldType::Int64, FieldType::AutoInc);
  const Location found = Locate(row, field, kIntegers);
  switch (found.column->type) {
    case FieldType::Int16:
      return found.column->values.At<std::int16_t>(found.row);
    case FieldType::Int32:
      return found.column->values.At<std::int32_t>(found.row);
    default:
      return found.column->values.At<std::int64_t>(found.row);
  }
}

inline double DatasetView::GetDouble(RowId row, FieldSelector field) const {
  const Location found = Locate(row, field, SetOf(FieldType::Double));
  return found.column->values.At<double>(found.row);
}

inline Currency DatasetView::GetCurrency(RowId row, FieldSelector field) const {
  const Location found = Locate(row, field, SetOf(FieldType::Currency));
  return Currency::FromRaw(found.column->values.At<std::int64_t>(found.row));
}

inline DateTime DatasetView::GetDateTime(RowId row, FieldSelector field) const {
  constexpr TypeSet kMoments = SetOf(FieldType::Date, FieldType::Time, FieldType::DateTime);
  const Location found = Locate(row, field, kMoments);
  return found.column->type == FieldType::Date ? DateTime(found.column->values.At<std::int32_t>(found.row))
                                               : MomentAt(*found.column, found.row);
}

inline TextView DatasetView::GetText(RowId row, FieldSelector field) const {
  return TextAt(Locate(row, field, SetOf(FieldType::Text, FieldType::Memo)));
}

/// A dataset as it was at one moment. It shares memory with it, and what is edited later is copied first, 64 KiB at a
/// time; so it is cheap to make, stays as it is, and may be read by other threads while the dataset goes on.
///
///     const Snapshot now = linii.TakeSnapshot();
///     std::jthread([now] { Print(now); });
class Snapshot : public DatasetView {
 public:
  /// For the library's own parts.
  explicit Snapshot(std::shared_ptr<const store::Contents> contents) noexcept;

 private:
  std::shared_ptr<const store::Contents> owned_;
};

/// Typed rows in memory. A dataset and what belongs to it is used from one thread at a time; different datasets are
/// independent. An operation that throws has changed nothing.
///
///     using namespace kiv::literals;
///     Dataset linii("linii", {{"id", FieldType::AutoInc, kKey},
///                             {"partener", FieldType::Text, 40, kRequired},
///                             {"suma", FieldType::Currency}});
///     const FieldRef suma = linii.Field("suma");
///     const RowId row = linii.Insert({{"partener", "Şapte Arini"_ro}, {suma, 1234.56_lei}});
///     linii.Set(row, suma, 1500_lei);
///     linii.GetInt64(row, "id")   // -1 until the database gives the number
class Dataset : public DatasetView {
 public:
  /// An empty dataset. The name is an identifier as a field's name is.
  KIV_API Dataset(TextView name, const Schema& schema);
  KIV_API ~Dataset();
  KIV_API Dataset(Dataset&& other) noexcept;
  KIV_API Dataset& operator=(Dataset&& other) noexcept;

  /// Adds a row. Fields that are not given get their default, an AutoInc its next temporary number, others null.
  /// Throws Error for a null where the field refuses it, a text that is too long, a number out of range, a key that
  /// another row has; InvalidCast for a value of another kind than the field's.
  ///
  ///     linii.Insert({{"partener", "Alfa"}, {"suma", 10_lei}});
  KIV_API RowId Insert(std::initializer_list<FieldValue> values);
  /// The same from values collected at run time.
  KIV_API RowId Insert(std::span<const FieldValue> values);
  /// Changes several fields of a row in one post. Values equal to the present ones are no change; if nothing changes,
  /// nothing is logged. Throws as Insert does, and Error for a ReadOnly field.
  KIV_API void Update(RowId row, std::initializer_list<FieldValue> values);
  /// The same from values collected at run time.
  KIV_API void Update(RowId row, std::span<const FieldValue> values);
  /// Changes one field. Example: `linii.Set(row, suma, 1500_lei);`
  KIV_API void Set(RowId row, FieldSelector field, ValueView value);
  /// Deletes a row. A row that was inserted since the changes were last accepted is gone, others are kept as Deleted.
  KIV_API void Delete(RowId row);

  /// The row with that key, in the order of the key's fields; empty where there is none. Throws Error where the dataset
  /// has no key or another count of key fields, and as Insert does for a value that a key field cannot hold.
  ///
  ///     facturi.Find({2026, "A17"})   // the row whose year is 2026 and whose number is "A17"
  [[nodiscard]] KIV_API std::optional<RowId> Find(std::initializer_list<ValueView> key) const;
  /// The same from values collected at run time.
  [[nodiscard]] KIV_API std::optional<RowId> Find(std::span<const ValueView> key) const;
  /// The same for a key of one integer field. Example: `linii.Find(17)`.
  [[nodiscard]] std::optional<RowId> Find(std::int64_t key) const {
    // Made here: an optional that a function returns goes through memory, where the next step would wait for it.
    const std::uint32_t row = FindNumber(key);
    return row == kNoRow ? std::nullopt : std::optional(RowId{row});
  }

  /// Adds a column that is worked out from the others of its row by an expression; docs/filters.md has the language. It
  /// reads like a field, by getters, cursors, filters, orders and aggregates, follows every edit and what takes it
  /// back, and is neither set nor saved; a snapshot does not have it. Other calculated columns may stand in the
  /// expression. Throws Error for a name that is taken or no identifier, FilterError, naming the place, for a text that
  /// is no expression, also for one that refers to the column itself. Reading a row in which it has no value throws
  /// FilterError.
  ///
  ///     const FieldRef tva = linii.Calculate("tva", "suma * 0.21");
  ///     linii.GetCurrency(row, tva)   // 259.2576_lei
  KIV_API FieldRef Calculate(TextView name, TextView expression);
  /// Adds a column with what another dataset, or this one, holds in the row whose key a field of this one has; null
  /// where there is no such row. `key` is the other's only key field, `wanted` one of its fields or calculated columns,
  /// whose name the column has unless it is given one. It is as a calculated column is, and follows the edits of the
  /// other dataset, too: a cursor goes on from its row once it is next moved or counted. Both datasets are used from
  /// one thread. The other one need not live as long: from its end on, reading a row with a key throws FilterError.
  /// Throws Error for a name that is taken or no identifier, fields that do not exist or are of another kind, a key
  /// that is not the other's.
  ///
  ///     linii.Lookup("partener_id", parteneri, "id", "nume");
  ///     linii.GetText(row, "nume")    // "Şapte Arini"
  KIV_API FieldRef Lookup(FieldSelector field, Dataset& other, TextView key, TextView wanted, TextView name = {});
  /// The calculated columns in the order in which they were added; that of FieldAt behind the fields of the schema.
  /// Example: `linii.CalculatedFields()[0].type` is FieldType::Currency.
  [[nodiscard]] KIV_API std::vector<FieldDef> CalculatedFields() const;

  /// The history of its changes. Example: `linii.Changes().UndoLast()`.
  [[nodiscard]] ChangeLog Changes() noexcept { return ChangeLog(*store_); }
  /// The dataset as it is now, for readers that need it to stay so.
  [[nodiscard]] KIV_API Snapshot TakeSnapshot();

  /// Tells the listener of every change until it is removed; the dataset keeps the address.
  KIV_API void AddListener(DatasetListener& listener);
  /// Tells it no more. Unknown ones are ignored.
  KIV_API void RemoveListener(DatasetListener& listener) noexcept;
  /// From now on listeners are not told of single changes. Calls nest.
  KIV_API void BeginUpdate() noexcept;
  /// Ends what the matching BeginUpdate began; after the last one listeners are told once if anything has changed.
  KIV_API void EndUpdate() noexcept;

  /// Gives back the memory of rows that are gone and of texts that nobody uses, and numbers the rows anew in their
  /// order. Marks stay; row numbers held anywhere are void.
  KIV_API void Compact();

  /// For the library's own parts.
  [[nodiscard]] store::Store& GetStore() noexcept { return *store_; }
  /// For the library's own parts: takes over what a loader has built.
  explicit Dataset(std::unique_ptr<store::Store> built) noexcept;

 private:
  static constexpr std::uint32_t kNoRow = 0xFFFFFFFF;
  [[nodiscard]] KIV_API std::uint32_t FindNumber(std::int64_t key) const;

  std::unique_ptr<store::Store> store_;
};

}  // namespace kiv
