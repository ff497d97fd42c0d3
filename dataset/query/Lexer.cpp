#include "dataset/query/Lexer.h"

#include <algorithm>
#include <bit>
#include <charconv>

#include "core/Calendar.h"
#include "core/Letters.h"
#include "core/Numbers.h"
#include "dataset/store/SchemaData.h"
#include "kivtools/dataset/Filter.h"

namespace kiv::query {
namespace {

using store::FoldName;
using store::Quoted;

struct Word {
  TextView name;
  Symbol symbol;
};

constexpr Word kWords[] = {
    {"and", Symbol::And},     {"or", Symbol::Or},           {"not", Symbol::Not}, {"is", Symbol::Is},
    {"null", Symbol::Null},   {"between", Symbol::Between}, {"in", Symbol::In},   {"like", Symbol::Like},
    {"div", Symbol::Div},     {"escape", Symbol::Escape},   {"mod", Symbol::Mod}, {"true", Symbol::True},
    {"false", Symbol::False},
};

/// The longer of two that begin alike comes first.
constexpr Word kSigns[] = {
    {"<>", Symbol::NotEqual},
    {"<=", Symbol::LessOrEqual},
    {">=", Symbol::GreaterOrEqual},
    {"||", Symbol::Bars},
    {"<", Symbol::Less},
    {">", Symbol::Greater},
    {"=", Symbol::Equal},
    {"(", Symbol::LeftParenthesis},
    {")", Symbol::RightParenthesis},
    {",", Symbol::Comma},
    {"+", Symbol::Plus},
    {"-", Symbol::Minus},
    {"*", Symbol::Times},
    {"/", Symbol::Slash},
};

bool IsNameCharacter(char character) noexcept {
  return character == '_' || ascii::IsDigit(character) || IsLetter(static_cast<unsigned char>(character));
}

constexpr bool IsBlank(char character) noexcept {
  return character == ' ' || (character >= '\t' && character <= '\r');
}

/// Reads the fixed forms of dates and times of day.
class Digits {
 public:
  explicit Digits(TextView text) noexcept : text_(text) {}

  /// A number of exactly that many digits.
  bool Number(std::size_t digits, int& number) noexcept {
    const TextView taken = text_.substr(0, digits);
    if (taken.size() < digits || !std::ranges::all_of(taken, ascii::IsDigit<char>)) {
      return false;
    }
    std::from_chars(taken.data(), taken.data() + digits, number);
    text_.remove_prefix(digits);
    return true;
  }
  bool Sign(char sign) noexcept {
    const bool isThere = !text_.empty() && text_.front() == sign;
    text_.remove_prefix(isThere ? 1 : 0);
    return isThere;
  }
  [[nodiscard]] bool AtEnd() const noexcept { return text_.empty(); }
  [[nodiscard]] bool IsNext(std::size_t ahead, char sign) const noexcept {
    return ahead < text_.size() && text_[ahead] == sign;
  }

 private:
  TextView text_;
};

struct Parts {
  int year = 1899;
  int month = 12;
  int day = 30;
  int hour = 0;
  int minute = 0;
  int second = 0;
  int millisecond = 0;
};

bool ReadDay(Digits& digits, Parts& parts) noexcept {
  return digits.Number(4, parts.year) && digits.Sign('-') && digits.Number(2, parts.month) && digits.Sign('-') &&
         digits.Number(2, parts.day);
}

bool ReadTime(Digits& digits, Parts& parts) noexcept {
  if (!digits.Number(2, parts.hour) || !digits.Sign(':') || !digits.Number(2, parts.minute)) {
    return false;
  }
  return !digits.Sign(':') ||
         (digits.Number(2, parts.second) && (!digits.Sign('.') || digits.Number(3, parts.millisecond)));
}

}  // namespace

void Refuse(std::size_t position, TextView why) {
  Text message = "Filtru: " + Text(why) + " (pozitia ";
  AppendDecimal(message, position + 1);
  throw FilterError(position, message + ")");
}

Token Lexer::Take(Symbol symbol, std::size_t length) {
  const Token token{
      symbol, {static_cast<std::uint32_t>(at_), static_cast<std::uint32_t>(at_ + length)}, text_.substr(at_, length)};
  at_ += length;
  return token;
}

Token Lexer::Next() {
  while (at_ < text_.size() && IsBlank(text_[at_])) {
    ++at_;
  }
  if (at_ == text_.size()) {
    return Take(Symbol::End, 0);
  }
  const char first = text_[at_];
  if (ascii::IsDigit(first)) {
    return TakeNumber();
  }
  if (IsNameCharacter(first)) {
    return TakeName();
  }
  switch (first) {
    case '\'':
      return TakeText();
    case '[':
      return TakeUntil(Symbol::Bracketed, ']', "numele dintre paranteze drepte");
    case '{':
      return TakeUntil(Symbol::Moment, '}', "data dintre acolade");
    case ':':
      return TakeParameter();
    default:
      break;
  }
  for (const Word& sign : kSigns) {
    if (text_.substr(at_).starts_with(sign.name)) {
      return Take(sign.symbol, sign.name.size());
    }
  }
  Refuse(at_, "caracterul " + Quoted(text_.substr(at_, 1)) + " nu are sens aici");
}

Token Lexer::TakeName() {
  std::size_t length = 1;
  while (at_ + length < text_.size() && IsNameCharacter(text_[at_ + length])) {
    ++length;
  }
  const Text folded = FoldName(text_.substr(at_, length));
  const auto* const word = std::ranges::find(kWords, TextView(folded), &Word::name);
  return Take(word == std::end(kWords) ? Symbol::Name : word->symbol, length);
}

Token Lexer::TakeNumber() {
  std::size_t length = 0;
  const auto passDigits = [&] {
    const std::size_t before = length;
    while (at_ + length < text_.size() && ascii::IsDigit(text_[at_ + length])) {
      ++length;
    }
    return length > before;
  };
  passDigits();
  bool isNumber = true;
  if (at_ + length < text_.size() && text_[at_ + length] == '.') {
    ++length;
    isNumber = passDigits();
  }
  while (at_ + length < text_.size() && (IsNameCharacter(text_[at_ + length]) || text_[at_ + length] == '.')) {
    ++length;
    isNumber = false;
  }
  if (!isNumber) {
    Refuse(at_, Quoted(text_.substr(at_, length)) + " nu este un numar");
  }
  return Take(Symbol::Number, length);
}

Token Lexer::TakeText() {
  std::size_t end = at_ + 1;
  while (true) {
    end = text_.find('\'', end);
    if (end == TextView::npos) {
      Refuse(at_, "textul " + Quoted(text_.substr(at_ + 1)) + " nu se incheie cu apostrof");
    }
    if (end + 1 == text_.size() || text_[end + 1] != '\'') {
      break;
    }
    end += 2;
  }
  Token token = Take(Symbol::Text, end + 1 - at_);
  token.text = token.text.substr(1, token.text.size() - 2);
  return token;
}

Token Lexer::TakeUntil(Symbol symbol, char end, TextView what) {
  const std::size_t found = text_.find(end, at_);
  if (found == TextView::npos) {
    Refuse(at_, Text(what) + " nu se incheie: " + Quoted(text_.substr(at_)));
  }
  Token token = Take(symbol, found + 1 - at_);
  token.text = token.text.substr(1, token.text.size() - 2);
  return token;
}

Token Lexer::TakeParameter() {
  std::size_t length = 1;
  while (at_ + length < text_.size() && IsNameCharacter(text_[at_ + length])) {
    ++length;
  }
  if (length == 1) {
    Refuse(at_, "dupa \":\" lipseste numele parametrului");
  }
  Token token = Take(Symbol::Parameter, length);
  token.text.remove_prefix(1);
  return token;
}

Literal Lexer::NumberOf(const Token& token, bool isNegative) {
  constexpr std::size_t kDecimals = 4;
  const auto integer = [](const Text& digits, std::int64_t& value) {
    return std::from_chars(digits.data(), digits.data() + digits.size(), value).ec == std::errc();
  };
  Text digits = (isNegative ? "-" : "") + Text(token.text);
  Literal literal{Kind::Integer, {.isNull = false}};
  std::int64_t value = 0;
  const std::size_t point = digits.find('.');
  if (point == Text::npos) {
    if (!integer(digits, value)) {
      Refuse(token.span.from, "numarul " + Quoted(digits) + " nu incape in 64 de biti");
    }
    literal.cell.bits = static_cast<std::uint64_t>(value);
    return literal;
  }
  if (const std::size_t decimals = digits.size() - point - 1; decimals <= kDecimals) {
    Text raw = digits;
    raw.erase(point, 1).append(kDecimals - decimals, '0');
    if (integer(raw, value)) {
      literal.kind = Kind::Currency;
      literal.cell.bits = static_cast<std::uint64_t>(value);
      return literal;
    }
  }
  double number = 0;
  if (std::from_chars(digits.data(), digits.data() + digits.size(), number).ec == std::errc::result_out_of_range &&
      token.text.front() != '0') {
    Refuse(token.span.from, "numarul " + Quoted(digits) + " este prea mare");
  }
  literal.kind = Kind::Double;
  literal.cell.bits = std::bit_cast<std::uint64_t>(number == 0 ? 0.0 : number);
  return literal;
}

Literal Lexer::MomentOf(const Token& token) {
  Digits digits(token.text);
  Parts parts;
  const bool hasDay = digits.IsNext(4, '-');
  const bool hasTime = !hasDay || digits.IsNext(10, ' ');
  const bool isRead = (!hasDay || ReadDay(digits, parts)) && (!hasDay || !hasTime || digits.Sign(' ')) &&
                      (!hasTime || ReadTime(digits, parts)) && digits.AtEnd();
  Literal literal{hasDay ? hasTime ? Kind::Moment : Kind::Date : Kind::Time, {.isNull = false}};
  try {
    if (isRead) {
      const DateTime moment = DateTime::Encode(parts.year, parts.month, parts.day, parts.hour, parts.minute,
                                               parts.second, parts.millisecond);
      const std::int64_t milliseconds = MillisecondsOf(moment);
      literal.cell.bits =
          static_cast<std::uint64_t>(literal.kind == Kind::Date ? milliseconds / kMillisecondsPerDay : milliseconds);
      return literal;
    }
  } catch (const DateEncodingError&) {  // told below, with the place
    static_cast<void>(isRead);
  }
  Refuse(token.span.from, Quoted(token.text) + " nu este o data sau o ora");
}

Text Lexer::TextOf(const Token& token) {
  Text text;
  text.reserve(token.text.size());
  for (std::size_t i = 0; i < token.text.size(); ++i) {
    text += token.text[i];
    i += token.text[i] == '\'' ? 1 : 0;
  }
  return text;
}

}  // namespace kiv::query
