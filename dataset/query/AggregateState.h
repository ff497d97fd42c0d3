#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/Int128.h"
#include "dataset/query/Evaluator.h"
#include "dataset/query/OrderReader.h"
#include "dataset/store/Followers.h"
#include "dataset/store/Store.h"
#include "kivtools/dataset/Aggregate.h"

namespace kiv::query {

/// What an aggregate is made of. It follows the store's edits, so its address stays.
class AggregateState final : public store::Follower {
 public:
  AggregateState(store::Store& store, TextView what, TextView groupBy, const FilterParameters& parameters);
  ~AggregateState() override;
  AggregateState(const AggregateState&) = delete;
  AggregateState& operator=(const AggregateState&) = delete;

  [[nodiscard]] Value Get(std::span<const ValueView> key);
  [[nodiscard]] std::vector<AggregateGroup> Groups();

  void Prepare(std::uint32_t /*changes*/) override {}
  void Before(const store::RowChange& change) noexcept override;
  void After(const store::RowChange& change) noexcept override;
  void RowsAdded() noexcept override { isStale_ = true; }
  void Renumbered(const store::Plane& /*numbers*/) noexcept override { isStale_ = true; }

 private:
  enum class Figure : std::uint8_t { Rows, Count, Sum, Average, Least, Most };
  /// Cells, and what the texts among them are views of once they are kept.
  struct Key {
    std::vector<store::Cell> cells;
    std::vector<std::string> bytes;
  };
  struct KeyBefore {
    using is_transparent = void;  // NOLINT: the name that the map looks for
    const AggregateState* state;
    bool operator()(const Key& left, const Key& right) const noexcept { return (*this)(left, right.cells); }
    bool operator()(const Key& left, std::span<const store::Cell> right) const noexcept;
    bool operator()(std::span<const store::Cell> left, const Key& right) const noexcept;
  };
  struct Group {
    std::size_t rows = 0;
    std::size_t values = 0;
    /// Rows in which the expression has no value.
    std::size_t faulty = 0;
    Int128 sum;
    double total = 0;
    store::Cell extreme;
    std::string extremeBytes;
    /// To be worked out anew.
    bool isDirty = false;
    /// Keys that are equal are not so in every byte; which one is shown depends on all of its rows.
    bool isMixed = false;
  };
  using Grouped = std::map<Key, Group, KeyBefore>;

  [[nodiscard]] const store::Contents& Check() const;
  void ParseFigure(const store::Contents& contents, TextView what, const FilterParameters& parameters);
  [[nodiscard]] int CompareKeys(std::span<const store::Cell> left, std::span<const store::Cell> right) const noexcept;
  [[nodiscard]] std::uint64_t CurrentLookupVersion() const noexcept;
  /// Whether what it holds is that of the rows, be it but for groups to be gone through.
  [[nodiscard]] bool IsReady() const noexcept { return !isStale_ && lookupVersion_ == CurrentLookupVersion(); }
  [[nodiscard]] bool Concerns(const store::RowChange& change) const noexcept;
  void ReadKey(std::uint32_t row);
  [[nodiscard]] bool IsKey(const Key& key) const noexcept;
  Group& GroupOfKey();
  void Add(const store::Contents& contents, std::uint32_t row);
  void AddTo(Group& group, const store::Contents& contents, std::uint32_t row);
  void Remove(const store::Contents& contents, std::uint32_t row);
  void AddValue(Group& group, const store::Cell& value);
  void RemoveValue(Group& group, const store::Cell& value);
  void MarkDirty(Group& group) noexcept {
    group.isDirty = true;
    hasDirty_ = true;
  }
  void Refresh();
  /// The column of the key, where its rows hold codes of a dictionary, of which there are few; null elsewhere.
  [[nodiscard]] const store::Column* ColumnOfCodes(const store::Contents& contents) const noexcept;
  void MakeAnew(const store::Contents& contents);
  void MakeDirtyAnew(const store::Contents& contents);
  /// Throws the error of the first row of the group in which the expression has no value.
  void TellFault(const store::Contents& contents, const Group& group);
  [[nodiscard]] Value Result(const store::Contents& contents, const Group& group);
  [[nodiscard]] Value SumOf(const store::Contents& contents, const Group& group) const;
  [[nodiscard]] Value AverageOf(const store::Contents& contents, const Group& group) const;

  std::shared_ptr<store::Followers> followers_;
  Figure figure_ = Figure::Rows;
  Tree tree_;
  Kind kind_ = Kind::Null;
  std::optional<Evaluator> evaluator_;
  std::vector<std::uint16_t> reads_;  // the fields that matter
  Order by_;
  OrderReader keyReader_;
  std::uint64_t lookupVersion_ = 0;
  Grouped groups_;
  std::vector<FieldType> types_;  // of the fields of the key
  std::vector<store::Cell> key_;  // of the row that is looked at
  bool isMakingAnew_ = false;
  bool isStale_ = true;
  bool hasDirty_ = false;
};

}  // namespace kiv::query
