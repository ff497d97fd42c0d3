#include "dataset/query/Evaluator.h"

#include <algorithm>

#include "core/Numbers.h"
#include "dataset/query/Functions.h"
#include "dataset/query/Lookup.h"
#include "dataset/store/SchemaData.h"
#include "kivtools/dataset/Filter.h"

namespace kiv::query {
namespace {

using store::Cell;

Fault PutTruth(bool truth, Cell& out) noexcept {
  out = {.bits = truth ? 1U : 0U, .isNull = false};
  return Fault::None;
}

bool Is(const Cell& condition, bool truth) noexcept {
  return !condition.isNull && (condition.bits != 0) == truth;
}

/// `deciding` is what one of the two settles: false in an and, true in an or.
Fault Combine(const Cell& left, const Cell& right, bool deciding, Cell& out) noexcept {
  if (Is(left, deciding) || Is(right, deciding)) {
    return PutTruth(deciding, out);
  }
  out = {};
  return left.isNull || right.isNull ? Fault::None : PutTruth(!deciding, out);
}

Cell Compared(const Node& node, Relation relation, Operand left, Operand right) noexcept {
  Cell truth;
  if (!left.cell.isNull && !right.cell.isNull) {
    PutTruth(Holds(relation, Compare(left, right, node.collation)), truth);
  }
  return truth;
}

Fault ApplyIn(const Node& node, std::span<const Operand> operands, Cell& out) noexcept {
  out = {};
  bool hasUnknown = false;
  for (const Operand& item : operands.subspan(1)) {
    const Cell isEqual = Compared(node, Relation::Equal, operands[0], item);
    if (Is(isEqual, true)) {
      return PutTruth(true, out);
    }
    hasUnknown |= isEqual.isNull;
  }
  return hasUnknown ? Fault::None : PutTruth(false, out);
}

Fault ApplyToValues(const Tree& tree, const Node& node, std::span<const Operand> operands, Cell& out,
                    std::string& buffer) {
  switch (node.op) {
    case Op::Not:
      return PutTruth(operands[0].cell.bits == 0, out);
    case Op::Compare:
      out = Compared(node, node.relation, operands[0], operands[1]);
      return Fault::None;
    case Op::Like:
      return PutTruth(IsLike(operands[0].cell.bytes, tree.patterns[node.detail], node.collation), out);
    case Op::Negate:
      return Negate(node.kind, IntegerOf(operands[0].cell), out);
    case Op::Concatenate:
      buffer.assign(operands[0].cell.bytes).append(operands[1].cell.bytes);
      out = {.bytes = buffer, .isNull = false};
      return Fault::None;
    case Op::Call:
      return Call(node, operands, out, buffer);
    case Op::Lookup:
      return LookUp(*tree.lookups[node.detail], operands[0].cell, out, buffer);
    default:
      return Calculate(node.op, node.kind, operands[0], operands[1], out);
  }
}

TextView ReasonOf(Fault fault) noexcept {
  return fault == Fault::Overflow         ? "rezultatul nu incape in tipul sau: "
         : fault == Fault::DivisionByZero ? "impartire la zero: "
                                          : "setul de date in care se cauta nu mai exista: ";
}

}  // namespace

Fault Apply(const Tree& tree, const Node& node, std::span<const Operand> operands, Cell& out, std::string& buffer) {
  switch (node.op) {
    case Op::And:
    case Op::Or:
      return Combine(operands[0].cell, operands[1].cell, node.op == Op::Or, out);
    case Op::IsNull:
      return PutTruth(operands[0].cell.isNull, out);
    case Op::Between:
      return Combine(Compared(node, Relation::GreaterOrEqual, operands[0], operands[1]),
                     Compared(node, Relation::LessOrEqual, operands[0], operands[2]), false, out);
    case Op::In:
      return ApplyIn(node, operands, out);
    default:
      break;
  }
  const bool takesNulls = node.op == Op::Call && node.function == Function::Coalesce;
  if (!takesNulls && std::ranges::any_of(operands, [](const Operand& operand) { return operand.cell.isNull; })) {
    out = {};
    return Fault::None;
  }
  return ApplyToValues(tree, node, operands, out, buffer);
}

Evaluator::Evaluator(const Tree& tree) : tree_(tree), values_(tree.nodes.size()), buffers_(tree.nodes.size()) {
  for (std::size_t i = 0; i < tree.nodes.size(); ++i) {
    if (tree.nodes[i].op == Op::Constant) {
      values_[i] = tree.constants[tree.nodes[i].detail];
    }
  }
}

Place Evaluator::AfterGuard(Place guard) {
  const Node& node = tree_.nodes[guard];
  const Cell& first = values_[tree_.OperandsOf(node)[0]];
  if (!Is(first, tree_.nodes[node.detail].op == Op::Or)) {
    return guard + 1;
  }
  values_[node.detail] = first;
  return node.detail + 1;
}

template <class Fields>
bool Evaluator::Run(Place root, const Fields& fields) {
  fault_ = Fault::None;
  for (Place place = tree_.nodes[root].start; place <= root;) {
    const Node& node = tree_.nodes[place];
    if (node.op == Op::Guard) {
      place = AfterGuard(place);
      continue;
    }
    if (node.op == Op::Field) {
      values_[place] = fields(node.detail);
    } else if (node.op != Op::Constant) {
      operands_.clear();
      for (const Place operand : tree_.OperandsOf(node)) {
        operands_.push_back({tree_.nodes[operand].kind, values_[operand]});
      }
      fault_ = Apply(tree_, node, operands_, values_[place], buffers_[place]);
      if (fault_ != Fault::None) {
        failed_ = place;
        return false;
      }
    }
    ++place;
  }
  return true;
}

const Cell& Evaluator::RequireValue(Place root, std::uint32_t row) const {
  if (fault_ == Fault::None) {
    return values_[root];
  }
  const Span span = tree_.nodes[failed_].span;
  Text message = "Filtru: " + Text(ReasonOf(fault_)) + store::Quoted(tree_.TextOf(span));
  if (row != kNoRow) {
    message += ", randul ";
    AppendDecimal(message, row);
  }
  throw FilterError(span.from, message);
}

const Cell& Evaluator::Evaluate(Place root, const store::Contents& contents, std::uint32_t row) {
  Run(root, [&](std::uint32_t field) { return contents.Read(row, field); });
  return RequireValue(root, row);
}

const Cell& Evaluator::EvaluateOf(Place root, const std::function<Cell(std::uint32_t field)>& fields,
                                  std::uint32_t row) {
  Run(root, fields);
  return RequireValue(root, row);
}

const Cell* Evaluator::TryEvaluate(Place root, const store::Contents& contents, std::uint32_t row) {
  return Run(root, [&](std::uint32_t field) { return contents.Read(row, field); }) ? &values_[root] : nullptr;
}

bool Evaluator::EvaluateFor(Place root, const Cell& field, const Cell*& result) {
  result = &values_[root];
  return Run(root, [&](std::uint32_t) -> const Cell& { return field; });
}

}  // namespace kiv::query
