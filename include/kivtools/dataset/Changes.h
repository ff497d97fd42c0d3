/// @file
/// The change log of a dataset: going back to a mark, taking back what was done to a row, and the net of all changes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "kivtools/Export.h"
#include "kivtools/Types.h"
#include "kivtools/dataset/Row.h"
#include "kivtools/dataset/Schema.h"
#include "kivtools/dataset/Value.h"
#include "kivtools/dataset/store/Plane.h"

namespace kiv {

namespace store {
struct Contents;
class Store;
}  // namespace store

/// A point in the history of a dataset. It ends when the history before it is left: by rolling back further, by
/// AcceptChanges() and CancelChanges(), and with its dataset; saved files do not hold it.
class Mark {
 private:
  friend class store::Store;
  explicit Mark(std::uint32_t serial) noexcept : serial_(serial) {}
  std::uint32_t serial_;
};

/// One change as the log holds it.
struct ChangeRecord {
  ChangeKind kind;
  RowId row;
  /// A field and what it held before.
  struct Field {
    std::size_t index;
    Value before;
  };
  /// What has changed; empty for insertions and deletions.
  std::vector<Field> fields;
};

/// The net of the changes of a dataset, as it was when it was made: one entry, called ticket, for each row that is not
/// as it was. A row inserted and deleted again has none; one inserted and changed is inserted as it now is. It shares
/// its memory with the dataset and stays as it is whatever happens to that; different threads may read it.
///
///     const Delta delta = linii.Changes().MakeDelta();
///     for (std::uint32_t ticket = 0; ticket < delta.Count(); ++ticket) {
///       if (delta.IsChanged(ticket, 2)) Send(delta.Row(ticket), delta.Current(ticket, 2));
///     }
class Delta {
 public:
  /// A random number of this delta, by which a receiver knows it again when it is sent twice.
  [[nodiscard]] KIV_API const Guid& Id() const noexcept;
  /// The dataset's name. Example: "linii".
  [[nodiscard]] KIV_API TextView Name() const noexcept;
  /// The dataset's fields.
  [[nodiscard]] KIV_API const Schema& GetSchema() const noexcept;
  /// How many tickets there are; they count from 0.
  [[nodiscard]] KIV_API std::uint32_t Count() const noexcept;

  // The following throw ListIndexError for a ticket or field beyond the last.

  /// Insert, Update or Delete.
  [[nodiscard]] KIV_API ChangeKind Kind(std::uint32_t ticket) const;
  /// The row in the dataset that the delta was made from.
  [[nodiscard]] KIV_API RowId Row(std::uint32_t ticket) const;
  /// Whether the field's value is to be written: every value of an inserted row that is not null, the changed ones of
  /// an updated row, none of a deleted row.
  [[nodiscard]] KIV_API bool IsChanged(std::uint32_t ticket, std::size_t field) const;
  /// Whether there is an original value: for the fields of the key, those that take part in the detection of conflicts
  /// and the changed ones; not in inserted rows.
  [[nodiscard]] KIV_API bool HasOriginal(std::uint32_t ticket, std::size_t field) const;
  /// The original value. Throws Error where there is none.
  [[nodiscard]] KIV_API Value Original(std::uint32_t ticket, std::size_t field) const;
  /// The new value. Throws Error for a deleted row. In a delta that was read from a packet a field that is neither
  /// changed nor has an original is null.
  [[nodiscard]] KIV_API Value Current(std::uint32_t ticket, std::size_t field) const;

  /// For the library's own parts: the delta of contents that nobody edits any more.
  Delta(std::shared_ptr<const store::Contents> contents, const Guid& id);
  /// For the library's own parts.
  [[nodiscard]] const store::Contents& GetContents() const noexcept { return *contents_; }

 private:
  [[nodiscard]] std::uint32_t Check(std::uint32_t ticket, std::size_t field) const;
  std::shared_ptr<const store::Contents> contents_;
  store::Plane rows_{store::Plane::Width::Four};  // by ticket
  std::uint32_t count_ = 0;
  Guid id_;
};

/// The history of a dataset: every post since it was loaded or its changes were accepted, in order. A handle, cheap to
/// copy; used as long as its dataset is. What throws has changed nothing.
///
///     const Mark before = linii.Changes().SetMark();
///     linii.Set(row, suma, 1500_lei);
///     linii.Changes().RollbackTo(before);   // the sum is what it was
class ChangeLog {
 public:
  /// How many changes are remembered.
  [[nodiscard]] KIV_API std::size_t Count() const noexcept;
  /// Calls back for each change, oldest first. The callback may read the dataset, not edit it: an edit from within
  /// throws Error.
  ///
  ///     linii.Changes().ForEach([&](const ChangeRecord& change) { Print(change.kind, change.row); });
  KIV_API void ForEach(const std::function<void(const ChangeRecord&)>& callback) const;

  /// Notes the present point of the history.
  KIV_API Mark SetMark();
  /// Takes back every change since the mark; values, states and log are then what they were. Numbers of rows added
  /// since are not given again. Throws Error for a mark that has ended.
  KIV_API void RollbackTo(Mark mark);
  /// Takes back the last change; false if there is none.
  KIV_API bool UndoLast();
  /// Gives a row its original values, a deleted one its life, and deletes an inserted one. That is a change of its own,
  /// which can be undone; changes of other rows stand. Throws Error for a row that does not exist and for an original
  /// key that another row now has.
  KIV_API void RevertRow(RowId row);
  /// Takes back every change and forgets the history.
  KIV_API void CancelChanges();
  /// Makes the present values the original ones, lets deleted rows go and forgets the history.
  KIV_API void AcceptChanges();
  /// The net of the changes. Example: `MakeDelta().Count()` is 0 after CancelChanges().
  [[nodiscard]] KIV_API Delta MakeDelta() const;

 private:
  friend class Dataset;
  explicit ChangeLog(store::Store& store) noexcept : store_(&store) {}
  store::Store* store_;
};

/// A change that is about to be posted.
class Proposal {
 public:
  /// Insert, Update or Delete.
  [[nodiscard]] ChangeKind Kind() const noexcept { return kind_; }
  /// The row; of an insertion the number that it will get.
  [[nodiscard]] RowId Row() const noexcept { return row_; }
  /// Whether the field gets another value than it has; in an insertion, whether it is given one other than null.
  [[nodiscard]] KIV_API bool IsChanged(std::size_t field) const;
  /// The value that the field will have, borrowed. Throws ListIndexError for a field beyond the last.
  [[nodiscard]] KIV_API ValueView Get(std::size_t field) const;

 private:
  friend class store::Store;
  Proposal(const store::Store& store, ChangeKind kind, RowId row) noexcept : store_(store), kind_(kind), row_(row) {}
  const store::Store& store_;
  ChangeKind kind_;
  RowId row_;
};

/// What has changed.
struct ChangeNotice {
  /// What happened to the row; empty where more than one row may be concerned: a roll-back, a load, the end of a group
  /// between BeginUpdate and EndUpdate.
  std::optional<ChangeKind> kind;
  RowId row{};
  /// The places of the fields that an update changed.
  std::span<const std::uint16_t> fields;
};

/// Is told of changes. It may read the dataset, not edit it: an edit from within throws Error.
class DatasetListener {
 public:
  KIV_API virtual ~DatasetListener();
  /// Before a post by Insert, Update, Set or Delete, after the library's own checks of values. Throws to refuse it.
  virtual void BeforePost(const Proposal& /*proposal*/) {}
  /// After a change.
  virtual void Changed(const ChangeNotice& /*notice*/) noexcept {}
};

}  // namespace kiv
