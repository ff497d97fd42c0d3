#pragma once

#include <cstdint>
#include <vector>

#include "dataset/query/Evaluator.h"
#include "dataset/query/Kernels.h"
#include "dataset/query/VectorPlan.h"

namespace kiv::query {

/// For each row of a batch whether it is true and whether it is false; neither where it is unknown.
struct Condition {
  Bits truth{};
  Bits falsity{};
};

/// The numbers of a batch, doubles by their bits: those of a column where they lie, or worked out.
struct Numbers {
  const std::int64_t* values = nullptr;
  Bits valid{};
  std::vector<std::int64_t> own = std::vector<std::int64_t>(kBatch);
};

/// What a condition says of the texts of a dictionary, one bit an entry.
struct EntryTruth {
  std::vector<std::uint32_t> truth;
  std::vector<std::uint32_t> falsity;
  std::vector<std::uint32_t> faulty;
  bool hasFaults = false;
  /// Of rows without a text.
  store::Cell ofNull;
  bool nullIsFaulty = false;
  /// Where the true ones follow one another and the others are false.
  bool isRange = false;
  std::int32_t first = 0;
  std::int32_t last = -1;
};

/// Works a condition out for the rows of a dataset, a batch at a time. Every result is that of the Evaluator.
class VectorRun {
 public:
  VectorRun(const Tree& tree, const store::Contents& contents, const Kernels& kernels);

  /// The rows for which it is true, of those from `first` to the end of the batch; `first` is a multiple of kBatch.
  /// Throws FilterError as the Evaluator does for the first row that has no value.
  const Bits& Select(std::uint32_t first);
  /// How many rows the batch has, gone ones too.
  [[nodiscard]] std::size_t Count() const noexcept { return count_; }

 private:
  struct Mask {
    Bits active;
    bool isSkipped = false;
  };

  void Begin(std::uint32_t first);
  bool RunSteps();
  bool RunStep(const Step& step, std::size_t& next);
  void RunConstant(const Step& step);
  void RunField(const Step& step);
  void RunRanges(const Step& step);
  bool RunEntries(const Step& step);
  void RunGuard(const Step& step, std::size_t& next);
  void RunLogic(const Step& step);
  void RunComparison(const Step& step);
  bool RunAddition(const Step& step);
  template <class RowValue>
  bool ForActiveRows(const Step& step, RowValue&& valueOf);
  bool RunApply(const Step& step);
  void SelectByRows();

  void JudgeEntries(std::uint32_t step, Place place);
  [[nodiscard]] Bits NotNull(const store::Column& column) const noexcept;
  [[nodiscard]] Bits BitsOf(const store::Plane& plane) const noexcept;
  template <class Element>
  [[nodiscard]] const Element* ElementsOf(const store::Column& column) const noexcept {
    return reinterpret_cast<const Element*>(column.values.BlockAt(first_)) + store::PlaceInBlock(first_);
  }
  void InRange(const store::Column& column, const Range& range, Bits& in) const;
  [[nodiscard]] store::Cell CellAt(Place place, std::size_t row) const noexcept;
  [[nodiscard]] const Condition& ConditionOf(const Node& node, std::size_t operand) const noexcept {
    return conditions_[plan_.registers[tree_.operands[node.firstOperand + operand]]];
  }
  [[nodiscard]] const Numbers& NumbersOf(const Node& node, std::size_t operand) const noexcept {
    return numbers_[plan_.registers[tree_.operands[node.firstOperand + operand]]];
  }

  const Tree& tree_;
  const store::Contents& contents_;
  const Kernels& kernels_;
  VectorPlan plan_;
  Evaluator evaluator_;
  std::vector<Condition> conditions_;
  std::vector<Numbers> numbers_;
  std::vector<EntryTruth> entries_;
  std::vector<Mask> masks_;
  std::uint32_t first_ = 0;
  std::size_t count_ = 0;
  std::string buffer_;
  std::vector<store::Cell> cells_;
  std::vector<Operand> operands_;
  Bits selected_{};
};

}  // namespace kiv::query
