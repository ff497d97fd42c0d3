#pragma once

#include <optional>
#include <utility>
#include <vector>

#include "dataset/query/CalculatedColumns.h"
#include "dataset/query/OrderedIndex.h"
#include "kivtools/dataset/Cursor.h"

namespace kiv::query {

/// What a cursor is made of. It follows the store's edits, so its address stays.
class CursorState final : public store::Follower {
 public:
  explicit CursorState(store::Store& store);
  /// A clone.
  CursorState(const CursorState& other);
  ~CursorState() override;
  CursorState& operator=(const CursorState&) = delete;

  void OrderBy(TextView order);
  void FilterBy(TextView condition, const FilterParameters& parameters);
  void ClearFilter();
  [[nodiscard]] Text OrderedBy() const { return OrderText(Contents(), index_->GetOrder()); }

  // Positions count from the beginning of the order, not of the range.
  [[nodiscard]] std::uint32_t Low();
  [[nodiscard]] std::uint32_t High();
  [[nodiscard]] std::uint32_t Position();
  bool MoveTo(std::uint32_t position);
  bool MoveToRow(std::uint32_t row);
  bool MoveToLast();
  bool MoveBy(bool forward);
  bool GoTo(const CursorBookmark& bookmark);
  [[nodiscard]] CursorBookmark Bookmark() const;
  [[nodiscard]] bool IsBefore() const { return Check(), place_ == Place::Before; }
  [[nodiscard]] bool IsBehind() const { return Check(), place_ == Place::Behind; }
  [[nodiscard]] std::uint32_t RequireRow() const;
  /// The row whose values the getters give where nothing is proposed.
  [[nodiscard]] std::uint32_t ReadRow() const;
  void RequireNoEdit() const;

  bool Locate(std::span<const FieldValue> values);
  bool LocateNearest(std::span<const ValueView> values);
  void SetRange(std::span<const ValueView> from, std::span<const ValueView> to);
  void ClearRange();

  void Edit();
  void Insert();
  void Set(FieldSelector field, ValueView value);
  void Post();
  void Cancel() noexcept;
  [[nodiscard]] bool IsEditing() const noexcept { return edit_ != EditOf::None; }
  void Delete();
  /// What the edit proposes for a field: null where it leaves it as it is.
  [[nodiscard]] const Value* Proposed(FieldSelector field) const;
  /// The dataset's getters.
  class Rows : public DatasetView {
   public:
    explicit Rows(const store::Contents& contents) noexcept : DatasetView(&contents) {}
  };
  [[nodiscard]] Rows View() const { return Rows(Contents()); }
  /// Whether the values of a field are of that kind.
  template <class Held>
  [[nodiscard]] bool Holds(FieldSelector field) const {
    const FieldType type = FieldAt(Contents(), DatasetView::ResolveAny(Contents(), field)).type;
    return std::holds_alternative<Held>(store::ViewOf(type, {.isNull = false}).Get());
  }
  [[noreturn]] void RefuseType(FieldSelector field) const;

  void Prepare(std::uint32_t /*changes*/) override {}
  void Before(const store::RowChange& change) noexcept override;
  void After(const store::RowChange& change) noexcept override;
  void RowsAdded() noexcept override {}
  void Renumbered(const store::Plane& numbers) noexcept override;

 private:
  enum class Place : std::uint8_t { Before, On, Behind };
  enum class EditOf : std::uint8_t { None, Row, NewRow, LostRow };
  /// Values of the first fields of the order, and as they are compared.
  struct Limit {
    std::vector<Value> values;
    std::vector<store::Cell> cells;
  };
  struct SoughtField {
    OrderField by;
    store::Cell cell;
  };

  /// Throws Error when it is gone.
  [[nodiscard]] store::Store& GetStore() const;
  void Check() const { static_cast<void>(GetStore()); }
  [[nodiscard]] const store::Contents& Contents() const { return GetStore().GetContents(); }
  [[noreturn]] void Refuse(TextView why) const;
  [[nodiscard]] std::vector<store::Cell> CellsOf(std::span<const ValueView> values) const;
  [[nodiscard]] Limit LimitOf(std::span<const ValueView> values) const;
  [[nodiscard]] const Value* ProposedBy(const CalculatedColumn& column) const;
  void Update();
  void UseFilter(std::optional<Filter> filter);
  [[nodiscard]] bool IsInRange(std::uint32_t row) const noexcept;
  [[nodiscard]] std::uint32_t Seek(std::span<const SoughtField> fields);
  [[nodiscard]] bool LeadsOrder(std::span<const SoughtField> fields, std::vector<store::Cell>& cells) const;

  std::shared_ptr<store::Followers> followers_;
  std::shared_ptr<OrderedIndex> index_;
  Limit from_;
  Limit to_;
  Place place_ = Place::Before;
  std::uint32_t row_ = 0;
  std::uint32_t following_ = 0;

  /// Where things were at a version of the index.
  std::uint64_t version_ = ~std::uint64_t{0};
  std::uint32_t low_ = 0;
  std::uint32_t high_ = 0;
  std::optional<std::uint32_t> position_;

  EditOf edit_ = EditOf::None;
  std::uint32_t editedRow_ = 0;
  std::vector<std::pair<std::uint16_t, Value>> proposed_;
  mutable Value calculated_;  // what a getter gives that borrows
};

}  // namespace kiv::query
