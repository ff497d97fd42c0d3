#include "dataset/query/TreeBuilder.h"

#include <algorithm>

#include "core/Calendar.h"
#include "core/Windows1250Codec.h"
#include "dataset/query/CalculatedColumns.h"
#include "dataset/query/Evaluator.h"
#include "dataset/query/Functions.h"
#include "dataset/query/Parameter.h"
#include "platform/Clock.h"

namespace kiv::query {

TextView NameOf(Kind kind) noexcept {
  return kind == Kind::Null ? "null" : kind == Kind::Text ? "Text" : store::TraitsOf(TypeOf(kind)).name;
}

namespace {

using store::Cell;
using store::Quoted;

TextView SignOf(Op op) noexcept {
  switch (op) {
    case Op::Add:
      return "+";
    case Op::Subtract:
      return "-";
    case Op::Multiply:
      return "*";
    case Op::Divide:
      return "/";
    case Op::IntegerDivide:
      return "div";
    case Op::Modulo:
      return "mod";
    default:
      return "||";
  }
}

bool AreComparable(Kind left, Kind right) noexcept {
  const auto isDay = [](Kind kind) { return kind == Kind::Date || kind == Kind::Moment; };
  return left == Kind::Null || right == Kind::Null || (left == right && left != Kind::Bytes) ||
         (IsNumber(left) && IsNumber(right)) || (isDay(left) && isDay(right));
}

}  // namespace

void RequireCondition(const Tree& tree, Place operand) {
  const Node& node = tree.nodes[operand];
  if (node.kind != Kind::Boolean && node.kind != Kind::Null) {
    Refuse(node.span.from,
           Quoted(tree.TextOf(node.span)) + " nu este o conditie, ci o valoare de tip " + Text(NameOf(node.kind)));
  }
}

TreeBuilder::TreeBuilder(const store::Contents& contents, const FilterParameters& parameters, TextView text,
                         TextView own)
    : contents_(contents), parameters_(parameters), own_(own) {
  tree_.text = text;
}

Place TreeBuilder::Push(Node node, std::span<const Place> operands) {
  if (tree_.nodes.size() == kMostNodes) {
    Refuse(node.span.from, "expresia are peste 4096 de parti");
  }
  node.start = operands.empty() ? static_cast<Place>(tree_.nodes.size()) : tree_.nodes[operands.front()].start;
  node.firstOperand = static_cast<std::uint32_t>(tree_.operands.size());
  node.operandCount = static_cast<std::uint32_t>(operands.size());
  for (const Place operand : operands) {
    if (tree_.nodes[operand].hasCollation && !node.hasCollation) {
      node.collation = tree_.nodes[operand].collation;
      node.hasCollation = true;
    }
  }
  tree_.operands.insert(tree_.operands.end(), operands.begin(), operands.end());
  tree_.nodes.push_back(node);
  return tree_.Root();
}

Place TreeBuilder::PushFolded(Node node, std::span<const Place> operands) {
  const Place place = Push(node, operands);
  const Node made = tree_.nodes[place];
  std::vector<Operand> values;
  for (const Place operand : operands) {
    if (!tree_.IsConstant(operand)) {
      return place;
    }
    values.push_back({KindOf(operand), tree_.constants[tree_.nodes[operand].detail]});
  }
  Cell result;
  std::string buffer;
  // What has no value has none in each row, where it is told.
  if (Apply(tree_, made, values, result, buffer) != Fault::None) {
    return place;
  }
  tree_.nodes.resize(made.start);
  return AddConstant(made.kind, result, made.span);
}

Place TreeBuilder::AddConstant(Kind kind, Cell cell, Span span) {
  Node node{
      .op = Op::Constant, .kind = kind, .detail = static_cast<std::uint32_t>(tree_.constants.size()), .span = span};
  if (kind == Kind::Text && !cell.bytes.empty()) {
    cell.bytes = tree_.bytes.emplace_back(cell.bytes);
  }
  tree_.constants.push_back(cell);
  return Push(node, {});
}

Place TreeBuilder::AddField(TextView name, Span span) {
  const auto index = IndexOfAny(contents_, name);
  if (!index) {
    const bool isOwn = store::FoldName(name) == store::FoldName(own_);
    Refuse(span.from, "campul " + Quoted(name) + (isOwn ? " s-ar calcula din el insusi" : " nu exista"));
  }
  if (const CalculatedColumn* const column = CalculatedAt(contents_, *index)) {
    return AddTree(*column->GetTree(), span);
  }
  const FieldDef& field = contents_.schemaData->fields[*index];
  Node node{
      .op = Op::Field, .kind = query::KindOf(field.type), .detail = static_cast<std::uint32_t>(*index), .span = span};
  node.collation = field.collation;
  node.hasCollation = node.kind == Kind::Text;
  return Push(node, {});
}

/// Takes the expression of a calculated column in; what goes wrong in it is told of its name.
Place TreeBuilder::AddTree(const Tree& tree, Span span) {
  if (tree_.nodes.size() + tree.nodes.size() > kMostNodes) {
    Refuse(span.from, "expresia are peste 4096 de parti");
  }
  const auto nodes = static_cast<std::uint32_t>(tree_.nodes.size());
  const auto operands = static_cast<std::uint32_t>(tree_.operands.size());
  const auto constants = static_cast<std::uint32_t>(tree_.constants.size());
  const auto patterns = static_cast<std::uint32_t>(tree_.patterns.size());
  const auto lookups = static_cast<std::uint32_t>(tree_.lookups.size());
  for (Node node : tree.nodes) {
    node.start += nodes;
    node.firstOperand += operands;
    node.detail += node.op == Op::Guard      ? nodes
                   : node.op == Op::Constant ? constants
                   : node.op == Op::Like     ? patterns
                   : node.op == Op::Lookup   ? lookups
                                             : 0;
    node.span = span;
    tree_.nodes.push_back(node);
  }
  for (const Place operand : tree.operands) {
    tree_.operands.push_back(operand + nodes);
  }
  for (Cell constant : tree.constants) {
    constant.bytes = constant.bytes.empty() ? TextView() : tree_.bytes.emplace_back(constant.bytes);
    tree_.constants.push_back(constant);
  }
  tree_.patterns.insert(tree_.patterns.end(), tree.patterns.begin(), tree.patterns.end());
  tree_.lookups.insert(tree_.lookups.end(), tree.lookups.begin(), tree.lookups.end());
  return tree_.Root();
}

Place TreeBuilder::AddLookup(Place key, std::shared_ptr<const LookupTarget> target, const FieldDef& wanted, Span span) {
  Node node{.op = Op::Lookup,
            .kind = query::KindOf(wanted.type),
            .detail = static_cast<std::uint32_t>(tree_.lookups.size()),
            .span = span};
  node.collation = wanted.collation;
  node.hasCollation = node.kind == Kind::Text;
  tree_.lookups.push_back(std::move(target));
  return Push(node, {&key, 1});
}

Place TreeBuilder::AddParameter(TextView name, Span span) {
  const Text folded = store::FoldName(name);
  const auto found = std::ranges::find_if(
      parameters_, [&](const FilterParameter& parameter) { return store::FoldName(parameter.name) == folded; });
  if (found == parameters_.end()) {
    Refuse(span.from, "parametrul " + Quoted(name) + " nu are valoare");
  }
  const Literal literal = LiteralOf(tree_, *found, span);
  return AddConstant(literal.kind, literal.cell, span);
}

Place TreeBuilder::AddNot(Place operand, Span span) {
  RequireCondition(tree_, operand);
  return PushFolded({.op = Op::Not, .kind = Kind::Boolean, .span = span}, {operand});
}

Place TreeBuilder::AddGuard(Place first) {
  RequireCondition(tree_, first);
  const Place place = Push({.op = Op::Guard, .span = tree_.nodes[first].span}, {&first, 1});
  return place;
}

Place TreeBuilder::AddLogic(Op op, Place guard, Place second, Span span) {
  RequireCondition(tree_, second);
  const Place first = tree_.OperandsOf(tree_.nodes[guard])[0];
  const Place made = PushFolded({.op = op, .kind = Kind::Boolean, .span = span}, {first, second});
  if (made > guard) {
    tree_.nodes[guard].detail = made;
  }
  return made;
}

Place TreeBuilder::AddIsNull(Place operand, Span span) {
  return PushFolded({.op = Op::IsNull, .kind = Kind::Boolean, .span = span}, {operand});
}

bool TreeBuilder::TurnIntoKindOf(Place constant, Kind kind) {
  Node& node = tree_.nodes[constant];
  if (node.op != Op::Constant) {
    return false;
  }
  Cell& cell = tree_.constants[node.detail];
  if (kind == Kind::Wide && node.kind == Kind::Text) {
    const WideText wide = windows1250::ToWide(cell.bytes);
    cell.bytes = tree_.bytes.emplace_back(reinterpret_cast<const char*>(wide.data()), wide.size() * sizeof(char16_t));
  } else if (kind == Kind::Time && (node.kind == Kind::Moment || node.kind == Kind::Date)) {
    // A parameter does not say whether it is a time of day or a moment of the day that is counted as 0.
    const std::int64_t value = IntegerOf(cell);
    if (value < 0 || value >= (node.kind == Kind::Date ? 1 : kMillisecondsPerDay)) {
      return false;
    }
  } else {
    return false;
  }
  node.kind = kind;
  return true;
}

void TreeBuilder::MakeComparable(Place left, Place right, Span span) {
  if (!AreComparable(KindOf(left), KindOf(right)) && !TurnIntoKindOf(left, KindOf(right)) &&
      !TurnIntoKindOf(right, KindOf(left))) {
    Refuse(span.from, "tipurile " + Text(NameOf(KindOf(left))) + " si " + Text(NameOf(KindOf(right))) +
                          " nu se compara: " + Quoted(tree_.TextOf(span)));
  }
}

Place TreeBuilder::AddCompare(Relation relation, Place left, Place right, Span span) {
  MakeComparable(left, right, span);
  return PushFolded({.op = Op::Compare, .kind = Kind::Boolean, .relation = relation, .span = span}, {left, right});
}

Place TreeBuilder::AddBetween(Place value, Place from, Place to, Span span) {
  MakeComparable(value, from, span);
  MakeComparable(value, to, span);
  return PushFolded({.op = Op::Between, .kind = Kind::Boolean, .span = span}, {value, from, to});
}

Place TreeBuilder::AddIn(Place value, std::span<const Place> items, Span span) {
  std::vector<Place> operands = {value};
  for (const Place item : items) {
    MakeComparable(value, item, span);
    operands.push_back(item);
  }
  return PushFolded({.op = Op::In, .kind = Kind::Boolean, .span = span}, operands);
}

TextView TreeBuilder::TextOfConstant(Place place, TextView what) const {
  const Node& node = tree_.nodes[place];
  if (node.op != Op::Constant || (node.kind != Kind::Text && node.kind != Kind::Null)) {
    Refuse(node.span.from, Text(what) + " este un text constant, nu " + Quoted(tree_.TextOf(node.span)));
  }
  return tree_.constants[node.detail].bytes;
}

Place TreeBuilder::AddLike(Place value, Place pattern, std::optional<Place> escape, Span span) {
  if (KindOf(value) != Kind::Text && KindOf(value) != Kind::Null) {
    RefuseOperand(value, "like");
  }
  const TextView model = TextOfConstant(pattern, "modelul unui like");
  const std::optional<TextView> character =
      escape ? std::optional(TextOfConstant(*escape, "caracterul de escape")) : std::nullopt;
  const bool isNull = tree_.constants[tree_.nodes[pattern].detail].isNull;
  Pattern made = MakePattern(model, character, tree_.nodes[escape.value_or(pattern)].span.from);
  tree_.nodes.resize(pattern);
  if (isNull) {
    tree_.nodes.resize(tree_.nodes[value].start);
    return AddConstant(Kind::Boolean, {}, span);
  }
  tree_.patterns.push_back(std::move(made));
  return PushFolded({.op = Op::Like,
                     .kind = Kind::Boolean,
                     .detail = static_cast<std::uint32_t>(tree_.patterns.size() - 1),
                     .span = span},
                    {value});
}

void TreeBuilder::RefuseOperand(Place operand, TextView operation) const {
  Refuse(tree_.nodes[operand].span.from, "operatia " + Text(operation) + " nu primeste o valoare de tip " +
                                             Text(NameOf(KindOf(operand))) + ": " +
                                             Quoted(tree_.TextOf(tree_.nodes[operand].span)));
}

Place TreeBuilder::AddNegate(Place operand, Span span) {
  if (!IsNumber(KindOf(operand)) && KindOf(operand) != Kind::Null) {
    RefuseOperand(operand, "-");
  }
  return PushFolded({.op = Op::Negate, .kind = KindOf(operand), .span = span}, {operand});
}

Kind TreeBuilder::ResultOf(Op op, Place left, Place right) const {
  // An absent value is of the other one's kind.
  const Kind first = KindOf(left) == Kind::Null ? KindOf(right) : KindOf(left);
  const Kind second = KindOf(right) == Kind::Null ? first : KindOf(right);
  const auto require = [&](auto isAllowed) {
    if (!isAllowed(first)) {
      RefuseOperand(KindOf(left) == Kind::Null ? right : left, SignOf(op));
    }
    if (!isAllowed(second)) {
      RefuseOperand(right, SignOf(op));
    }
  };
  if (first == Kind::Null) {
    return Kind::Null;
  }
  switch (op) {
    case Op::Concatenate:
      require([](Kind kind) { return kind == Kind::Text; });
      return Kind::Text;
    case Op::IntegerDivide:
    case Op::Modulo:
      require([](Kind kind) { return kind == Kind::Integer; });
      return Kind::Integer;
    default:
      break;
  }
  if (first == Kind::Date && second == Kind::Integer && (op == Op::Add || op == Op::Subtract)) {
    return Kind::Date;
  }
  if (first == Kind::Date && second == Kind::Date && op == Op::Subtract) {
    return Kind::Integer;
  }
  require(IsNumber);
  const Kind wider = std::max(first, second);
  return op == Op::Divide && wider == Kind::Integer ? Kind::Double : wider;
}

Place TreeBuilder::AddArithmetic(Op op, Place left, Place right, Span span) {
  return PushFolded({.op = op, .kind = ResultOf(op, left, right), .span = span}, {left, right});
}

Place TreeBuilder::AddCall(TextView name, std::span<const Place> arguments, Span span) {
  const FunctionTraits* const traits = FindFunction(name);
  if (traits == nullptr) {
    Refuse(span.from, "functia " + Quoted(name) + " nu exista");
  }
  if (arguments.size() < traits->least || arguments.size() > traits->most) {
    Refuse(span.from, "functia " + Text(traits->name) + " nu are atatea argumente: " + Quoted(tree_.TextOf(span)));
  }
  if (traits->function == Function::Today) {
    const double now = platform::clock_service.Current().Now().Days();
    return AddConstant(Kind::Date,
                       {.bits = static_cast<std::uint64_t>(static_cast<std::int64_t>(now)), .isNull = false}, span);
  }
  Node call{.op = Op::Call, .function = traits->function, .span = span};
  TypeCall(tree_, call, arguments);
  return PushFolded(call, arguments);
}

}  // namespace kiv::query
