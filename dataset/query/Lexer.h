#pragma once

#include <cstddef>
#include <cstdint>

#include "dataset/query/Kind.h"
#include "dataset/store/Cell.h"

namespace kiv::query {

/// The pieces that a text is made of.
enum class Symbol : std::uint8_t {
  End,
  Name,       ///< of a field or a function
  Bracketed,  ///< the name of a field between [ and ]
  Number,
  Text,
  Moment,
  Parameter,
  LeftParenthesis,
  RightParenthesis,
  Comma,
  Equal,
  NotEqual,
  Less,
  LessOrEqual,
  Greater,
  GreaterOrEqual,
  Plus,
  Minus,
  Times,
  Slash,
  Bars,
  And,
  Or,
  Not,
  Is,
  Null,
  Between,
  In,
  Like,
  Escape,
  Div,
  Mod,
  True,
  False,
};

/// A part of the text.
struct Span {
  std::uint32_t from = 0;
  std::uint32_t to = 0;
};

struct Token {
  Symbol symbol = Symbol::End;
  Span span;
  /// Of a name or parameter itself, of a text what is between its apostrophes, of a number or moment its digits.
  TextView text;
};

/// A literal's value.
struct Literal {
  Kind kind;
  store::Cell cell;
};

/// Cuts a text into its pieces. Every fault is a FilterError.
class Lexer {
 public:
  explicit Lexer(TextView text) noexcept : text_(text) {}

  Token Next();

  /// The value of a number's digits, with a minus in front of them or not.
  static Literal NumberOf(const Token& token, bool isNegative);
  /// The value of a date, a time of day or both.
  static Literal MomentOf(const Token& token);
  /// What a text's two apostrophes in a row stand for.
  static Text TextOf(const Token& token);

 private:
  Token Take(Symbol symbol, std::size_t length);
  Token TakeName();
  Token TakeNumber();
  Token TakeText();
  Token TakeUntil(Symbol symbol, char end, TextView what);
  Token TakeParameter();

  TextView text_;
  std::size_t at_ = 0;
};

/// Throws FilterError: `why` is a sentence without its full stop.
[[noreturn]] void Refuse(std::size_t position, TextView why);

}  // namespace kiv::query
