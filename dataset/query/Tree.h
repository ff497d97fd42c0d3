#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <span>
#include <vector>

#include "dataset/query/Kind.h"
#include "dataset/query/Lexer.h"
#include "dataset/store/Cell.h"
#include "kivtools/dataset/Collation.h"

namespace kiv::query {

/// What a node does with its operands.
enum class Op : std::uint8_t {
  Constant,
  Field,
  Not,
  Guard,  ///< stands between the two operands of And or Or and skips the second where the first decides
  And,
  Or,
  IsNull,
  Compare,
  Between,
  In,
  Like,
  Negate,
  Add,
  Subtract,
  Multiply,
  Divide,
  IntegerDivide,
  Modulo,
  Concatenate,
  Call,
  Lookup,  ///< the row of another dataset whose key the operand is
};

enum class Function : std::uint8_t {
  Lower,
  Upper,
  Trim,
  Length,
  Substr,
  Contains,
  StartsWith,
  Abs,
  Round,
  Year,
  Month,
  Day,
  DateOf,
  TimeOf,
  Coalesce,
  Today,
  TestCNP,
  TestCodFiscal,
  EsteIBAN,
  ValideazaSIRUTA,
  RoToEn,
};

enum class Relation : std::uint8_t { Equal, NotEqual, Less, LessOrEqual, Greater, GreaterOrEqual };

struct LookupTarget;

/// Where a node stands among the nodes.
using Place = std::uint32_t;

struct Node {
  Op op = Op::Constant;
  Kind kind = Kind::Null;
  Relation relation = Relation::Equal;
  Function function = Function::Lower;
  Collation collation = Collation::Romanian;
  /// Whether the collation is that of a field within.
  bool hasCollation = false;
  /// The first node of its subtree, which ends with itself.
  Place start = 0;
  /// Of its operands among those of the tree.
  std::uint32_t firstOperand = 0;
  std::uint32_t operandCount = 0;
  /// The field, the constant, the pattern, the look-up, or the node to which a guard skips.
  std::uint32_t detail = 0;
  Span span;
};

/// The pattern of a `like`, cut into its characters.
struct Pattern {
  enum class Wildcard : std::uint8_t { None, One, Any };
  struct Piece {
    Wildcard wildcard;
    char character;
  };
  std::vector<Piece> pieces;
};

/// An expression as a list of nodes, each behind its operands, so that nothing goes down into it by calling itself.
struct Tree {
  std::vector<Node> nodes;
  std::vector<Place> operands;
  std::vector<store::Cell> constants;
  std::vector<Pattern> patterns;
  std::vector<std::shared_ptr<const LookupTarget>> lookups;
  /// What the constants of texts are views of.
  std::deque<std::string> bytes;
  /// The text that was compiled.
  Text text;

  [[nodiscard]] Place Root() const noexcept { return static_cast<Place>(nodes.size() - 1); }
  [[nodiscard]] Kind ResultKind() const noexcept { return nodes.back().kind; }
  [[nodiscard]] std::span<const Place> OperandsOf(const Node& node) const noexcept {
    return std::span(operands).subspan(node.firstOperand, node.operandCount);
  }
  [[nodiscard]] const Node& Operand(const Node& node, std::size_t index) const noexcept {
    return nodes[operands[node.firstOperand + index]];
  }
  [[nodiscard]] bool IsConstant(Place place) const noexcept { return nodes[place].op == Op::Constant; }
  [[nodiscard]] TextView TextOf(Span span) const noexcept {
    return TextView(text).substr(span.from, span.to - span.from);
  }
};

/// The limits of an expression.
inline constexpr std::size_t kMostText = 65'536;
inline constexpr std::size_t kMostNodes = 4096;
inline constexpr std::uint32_t kMostDepth = 64;

}  // namespace kiv::query
