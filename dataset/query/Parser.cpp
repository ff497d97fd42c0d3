#include "dataset/query/Parser.h"

#include <iterator>
#include <optional>
#include <utility>

#include "dataset/query/TreeBuilder.h"

namespace kiv::query {
namespace {

using store::Quoted;

class Parser {
 public:
  Parser(const store::Contents& contents, TextView text, const FilterParameters& parameters, TextView own)
      : lexer_(text), builder_(contents, parameters, text, own) {
    if (text.size() > kMostText) {
      Refuse(kMostText, "textul are peste 65536 de octeti");
    }
    current_ = lexer_.Next();
  }

  Tree Whole() && {
    ParseOr();
    if (current_.symbol != Symbol::End) {
      RefuseCurrent();
    }
    return std::move(builder_).Finish();
  }

 private:
  Token Advance() {
    last_ = current_.span.to;
    return std::exchange(current_, lexer_.Next());
  }
  bool Accept(Symbol symbol) {
    const bool isThere = current_.symbol == symbol;
    if (isThere) {
      Advance();
    }
    return isThere;
  }
  void Expect(Symbol symbol) {
    if (!Accept(symbol)) {
      RefuseCurrent();
    }
  }
  [[noreturn]] void RefuseCurrent() const {
    if (current_.symbol == Symbol::End) {
      Refuse(current_.span.from, "expresia se incheie prea devreme");
    }
    Refuse(current_.span.from, Quoted(builder_.Current().TextOf(current_.span)) + " nu are sens aici");
  }
  /// From there to the end of what has been read.
  [[nodiscard]] Span SpanFrom(std::uint32_t from) const noexcept { return {from, last_}; }

  Place ParseOr() {
    const std::uint32_t from = current_.span.from;
    Place left = ParseAnd();
    while (Accept(Symbol::Or)) {
      const Place guard = builder_.AddGuard(left);
      const Place right = ParseAnd();
      left = builder_.AddLogic(Op::Or, guard, right, SpanFrom(from));
    }
    return left;
  }

  Place ParseAnd() {
    const std::uint32_t from = current_.span.from;
    Place left = ParseNot();
    while (Accept(Symbol::And)) {
      const Place guard = builder_.AddGuard(left);
      const Place right = ParseNot();
      left = builder_.AddLogic(Op::And, guard, right, SpanFrom(from));
    }
    return left;
  }

  Place ParseNot() {
    const std::uint32_t from = current_.span.from;
    if (!Accept(Symbol::Not)) {
      return ParseTest();
    }
    const Place operand = ParseTest();
    return builder_.AddNot(operand, SpanFrom(from));
  }

  [[nodiscard]] std::optional<Relation> CurrentRelation() const noexcept {
    if (current_.symbol < Symbol::Equal || current_.symbol > Symbol::GreaterOrEqual) {
      return std::nullopt;
    }
    constexpr Relation kRelations[] = {Relation::Equal,       Relation::NotEqual, Relation::Less,
                                       Relation::LessOrEqual, Relation::Greater,  Relation::GreaterOrEqual};
    static_assert(std::size(kRelations) ==
                  static_cast<std::size_t>(Symbol::GreaterOrEqual) - static_cast<std::size_t>(Symbol::Equal) + 1);
    return kRelations[static_cast<std::size_t>(current_.symbol) - static_cast<std::size_t>(Symbol::Equal)];
  }

  Place ParseTest() {
    const std::uint32_t from = current_.span.from;
    const Place value = ParseSum();
    if (const auto relation = CurrentRelation()) {
      Advance();
      const Place right = ParseSum();
      return builder_.AddCompare(*relation, value, right, SpanFrom(from));
    }
    if (Accept(Symbol::Is)) {
      const bool isNegated = Accept(Symbol::Not);
      Expect(Symbol::Null);
      return Negated(isNegated, builder_.AddIsNull(value, SpanFrom(from)), from);
    }
    const bool isNegated = Accept(Symbol::Not);
    if (Accept(Symbol::Between)) {
      return Negated(isNegated, ParseBetween(value, from), from);
    }
    if (Accept(Symbol::In)) {
      return Negated(isNegated, ParseIn(value, from), from);
    }
    if (Accept(Symbol::Like)) {
      return Negated(isNegated, ParseLike(value, from), from);
    }
    if (isNegated) {
      RefuseCurrent();
    }
    return value;
  }

  Place Negated(bool isNegated, Place condition, std::uint32_t from) {
    return isNegated ? builder_.AddNot(condition, SpanFrom(from)) : condition;
  }

  Place ParseBetween(Place value, std::uint32_t from) {
    const Place low = ParseSum();
    Expect(Symbol::And);
    const Place high = ParseSum();
    return builder_.AddBetween(value, low, high, SpanFrom(from));
  }

  Place ParseIn(Place value, std::uint32_t from) {
    Expect(Symbol::LeftParenthesis);
    std::vector<Place> items;
    do {
      items.push_back(ParseSum());
    } while (Accept(Symbol::Comma));
    Expect(Symbol::RightParenthesis);
    return builder_.AddIn(value, items, SpanFrom(from));
  }

  Place ParseLike(Place value, std::uint32_t from) {
    const Place pattern = ParseSum();
    std::optional<Place> escape;
    if (Accept(Symbol::Escape)) {
      escape = ParseSum();
    }
    return builder_.AddLike(value, pattern, escape, SpanFrom(from));
  }

  [[nodiscard]] std::optional<Op> CurrentSign(bool ofTerms) const noexcept {
    switch (current_.symbol) {
      case Symbol::Plus:
        return ofTerms ? std::nullopt : std::optional(Op::Add);
      case Symbol::Minus:
        return ofTerms ? std::nullopt : std::optional(Op::Subtract);
      case Symbol::Bars:
        return ofTerms ? std::nullopt : std::optional(Op::Concatenate);
      case Symbol::Times:
        return ofTerms ? std::optional(Op::Multiply) : std::nullopt;
      case Symbol::Slash:
        return ofTerms ? std::optional(Op::Divide) : std::nullopt;
      case Symbol::Div:
        return ofTerms ? std::optional(Op::IntegerDivide) : std::nullopt;
      case Symbol::Mod:
        return ofTerms ? std::optional(Op::Modulo) : std::nullopt;
      default:
        return std::nullopt;
    }
  }

  Place ParseSum() {
    const std::uint32_t from = current_.span.from;
    Place left = ParseTerm();
    while (const auto op = CurrentSign(false)) {
      Advance();
      const Place right = ParseTerm();
      left = builder_.AddArithmetic(*op, left, right, SpanFrom(from));
    }
    return left;
  }

  Place ParseTerm() {
    const std::uint32_t from = current_.span.from;
    Place left = ParseUnary();
    while (const auto op = CurrentSign(true)) {
      Advance();
      const Place right = ParseUnary();
      left = builder_.AddArithmetic(*op, left, right, SpanFrom(from));
    }
    return left;
  }

  Place ParseUnary() {
    const std::uint32_t from = current_.span.from;
    if (!Accept(Symbol::Minus)) {
      return ParsePrimary();
    }
    if (current_.symbol == Symbol::Number) {
      // With its sign: the least integer has no positive one.
      const Literal literal = Lexer::NumberOf(Advance(), true);
      return builder_.AddConstant(literal.kind, literal.cell, SpanFrom(from));
    }
    const Place operand = ParsePrimary();
    return builder_.AddNegate(operand, SpanFrom(from));
  }

  Place ParsePrimary() {
    const Token token = current_;
    switch (token.symbol) {
      case Symbol::Name:
        Advance();
        return current_.symbol == Symbol::LeftParenthesis ? ParseCall(token)
                                                          : builder_.AddField(token.text, token.span);
      case Symbol::Bracketed:
        Advance();
        return builder_.AddField(token.text, token.span);
      case Symbol::Parameter:
        Advance();
        return builder_.AddParameter(token.text, token.span);
      case Symbol::LeftParenthesis:
        return ParseParenthesis();
      default:
        return ParseLiteral(token);
    }
  }

  Place ParseLiteral(const Token& token) {
    Literal literal{Kind::Null, {}};
    Text text;
    switch (token.symbol) {
      case Symbol::Number:
        literal = Lexer::NumberOf(token, false);
        break;
      case Symbol::Moment:
        literal = Lexer::MomentOf(token);
        break;
      case Symbol::Text:
        text = Lexer::TextOf(token);
        literal = {Kind::Text, {.bytes = text, .isNull = false}};
        break;
      case Symbol::True:
      case Symbol::False:
        literal = {Kind::Boolean, {.bits = token.symbol == Symbol::True ? 1U : 0U, .isNull = false}};
        break;
      case Symbol::Null:
        break;
      default:
        RefuseCurrent();
    }
    Advance();
    return builder_.AddConstant(literal.kind, literal.cell, token.span);
  }

  void Enter() {
    if (++depth_ > kMostDepth) {
      Refuse(current_.span.from, "parantezele sunt pe mai mult de 64 de niveluri");
    }
    Expect(Symbol::LeftParenthesis);
  }
  void Leave() {
    Expect(Symbol::RightParenthesis);
    --depth_;
  }

  Place ParseParenthesis() {
    Enter();
    const Place inner = ParseOr();
    Leave();
    return inner;
  }

  Place ParseCall(const Token& name) {
    Enter();
    std::vector<Place> arguments;
    if (current_.symbol != Symbol::RightParenthesis) {
      do {
        arguments.push_back(ParseOr());
      } while (Accept(Symbol::Comma));
    }
    Leave();
    return builder_.AddCall(name.text, arguments, SpanFrom(name.span.from));
  }

  Lexer lexer_;
  TreeBuilder builder_;
  Token current_;
  std::uint32_t last_ = 0;
  std::uint32_t depth_ = 0;
};

}  // namespace

Tree Parse(const store::Contents& contents, TextView text, const FilterParameters& parameters, TextView own) {
  return Parser(contents, text, parameters, own).Whole();
}

}  // namespace kiv::query
