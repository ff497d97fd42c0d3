#pragma once

#include <functional>
#include <string>
#include <vector>

#include "dataset/query/Calculation.h"
#include "dataset/query/Tree.h"
#include "dataset/store/Contents.h"

namespace kiv::query {

/// Works out one node of operands that are known. `buffer` takes the bytes of a text that is new.
Fault Apply(const Tree& tree, const Node& node, std::span<const Operand> operands, store::Cell& out,
            std::string& buffer);

/// Works an expression out row by row: the plain way, which says what every other way has to give. It holds the values
/// of all nodes and is kept for the next row.
class Evaluator {
 public:
  explicit Evaluator(const Tree& tree);

  /// The value of the subtree that ends at `root`, borrowed until the next call. Throws FilterError, naming the node
  /// and the row, where there is none.
  const store::Cell& Evaluate(Place root, const store::Contents& contents, std::uint32_t row);
  /// The same of the fields' values that are given; of a row without a number kNoRow.
  const store::Cell& EvaluateOf(Place root, const std::function<store::Cell(std::uint32_t field)>& fields,
                                std::uint32_t row);
  static constexpr std::uint32_t kNoRow = 0xFFFFFFFF;
  /// The same; null in place of a FilterError, and then LastFault() says why.
  const store::Cell* TryEvaluate(Place root, const store::Contents& contents, std::uint32_t row);
  /// The same where every field of the subtree has one value, for all rows that have it. False in place of a
  /// FilterError.
  bool EvaluateFor(Place root, const store::Cell& field, const store::Cell*& result);
  /// Why the last evaluation had no value.
  [[nodiscard]] Fault LastFault() const noexcept { return fault_; }

 private:
  template <class Fields>
  bool Run(Place root, const Fields& fields);
  [[nodiscard]] Place AfterGuard(Place guard);
  [[nodiscard]] const store::Cell& RequireValue(Place root, std::uint32_t row) const;

  const Tree& tree_;
  std::vector<store::Cell> values_;
  std::vector<std::string> buffers_;
  std::vector<Operand> operands_;
  Place failed_ = 0;
  Fault fault_ = Fault::None;
};

}  // namespace kiv::query
