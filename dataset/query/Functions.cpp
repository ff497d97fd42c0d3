#include "dataset/query/Functions.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>

#include "core/Calendar.h"
#include "core/Letters.h"
#include "core/Trim.h"
#include "dataset/store/SchemaData.h"
#include "kivtools/WinUtil/BankAndLocalityCodes.h"
#include "kivtools/WinUtil/FiscalCode.h"
#include "kivtools/WinUtil/PersonalNumericCode.h"
#include "kivtools/WinUtil/Transliteration.h"

namespace kiv::query {
namespace {

using store::Cell;
using store::Quoted;

constexpr std::size_t kAny = kMostNodes;

constexpr std::array kFunctions = {
    FunctionTraits{Function::Lower, "Lower", 1, 1},
    FunctionTraits{Function::Upper, "Upper", 1, 1},
    FunctionTraits{Function::Trim, "Trim", 1, 1},
    FunctionTraits{Function::Length, "Length", 1, 1},
    FunctionTraits{Function::Substr, "Substr", 2, 3},
    FunctionTraits{Function::Contains, "Contains", 2, 2},
    FunctionTraits{Function::StartsWith, "StartsWith", 2, 2},
    FunctionTraits{Function::Abs, "Abs", 1, 1},
    FunctionTraits{Function::Round, "Round", 1, 2},
    FunctionTraits{Function::Year, "Year", 1, 1},
    FunctionTraits{Function::Month, "Month", 1, 1},
    FunctionTraits{Function::Day, "Day", 1, 1},
    FunctionTraits{Function::DateOf, "DateOf", 1, 1},
    FunctionTraits{Function::TimeOf, "TimeOf", 1, 1},
    FunctionTraits{Function::Coalesce, "Coalesce", 1, kAny},
    FunctionTraits{Function::Today, "Today", 0, 0},
    FunctionTraits{Function::TestCNP, "TestCNP", 1, 1},
    FunctionTraits{Function::TestCodFiscal, "TestCodFiscal", 1, 1},
    FunctionTraits{Function::EsteIBAN, "EsteIBAN", 1, 1},
    FunctionTraits{Function::ValideazaSIRUTA, "ValideazaSIRUTA", 1, 1},
    FunctionTraits{Function::RoToEn, "RoToEn", 1, 1},
};

consteval bool FunctionsStandInOrder() {
  for (std::size_t i = 0; i < kFunctions.size(); ++i) {
    if (kFunctions[i].function != static_cast<Function>(i)) {
      return false;
    }
  }
  return true;
}
static_assert(FunctionsStandInOrder());

/// Refuses an argument of another kind than those that are taken; an absent value may stand for each of them.
class Arguments {
 public:
  Arguments(const Tree& tree, const Node& call, std::span<const Place> places) noexcept
      : tree_(tree), call_(call), places_(places) {}

  // Most callers want the refusal only.
  Kind Expect(std::size_t index, std::initializer_list<Kind> kinds) const {  // NOLINT(modernize-use-nodiscard)
    if (index >= places_.size()) {
      return Kind::Null;
    }
    const Node& argument = tree_.nodes[places_[index]];
    if (argument.kind != Kind::Null && std::ranges::find(kinds, argument.kind) == kinds.end()) {
      Refuse(argument.span.from, "functia " + Text(TraitsOf(call_.function).name) + " nu primeste o valoare de tip " +
                                     Text(NameOf(argument.kind)) + ": " + Quoted(tree_.TextOf(argument.span)));
    }
    return argument.kind == Kind::Null ? *kinds.begin() : argument.kind;
  }

 private:
  const Tree& tree_;
  const Node& call_;
  std::span<const Place> places_;
};

/// The decimals that Round keeps have to be known beforehand, because its overflow does not depend on rows then.
void CheckDecimals(const Tree& tree, Kind kind, std::span<const Place> arguments) {
  if (arguments.size() < 2) {
    return;
  }
  const Node& decimals = tree.nodes[arguments[1]];
  const std::int64_t most = kind == Kind::Double ? 15 : 4;
  const Cell* const cell = decimals.op == Op::Constant ? &tree.constants[decimals.detail] : nullptr;
  if (cell == nullptr || cell->isNull || IntegerOf(*cell) < 0 || IntegerOf(*cell) > most) {
    Refuse(decimals.span.from, Text("numarul de zecimale este o constanta de la 0 la ") + (most == 4 ? "4" : "15") +
                                   ": " + Quoted(tree.TextOf(decimals.span)));
  }
}

Kind CommonKind(const Tree& tree, std::span<const Place> arguments) {
  Kind common = Kind::Null;
  for (const Place place : arguments) {
    const Node& argument = tree.nodes[place];
    const Kind kind = argument.kind;
    const bool areNumbers = IsNumber(common) && IsNumber(kind);
    const bool areDays =
        (common == Kind::Date && kind == Kind::Moment) || (common == Kind::Moment && kind == Kind::Date);
    if (common == Kind::Null || areNumbers || areDays) {
      common = std::max(common, kind);  // the wider one has the higher number
    } else if (kind != Kind::Null && kind != common) {
      Refuse(argument.span.from,
             "argumentele functiei Coalesce nu sunt de acelasi fel: " + Quoted(tree.TextOf(argument.span)));
    }
  }
  return common;
}

Fault PutNumber(std::int64_t value, Cell& out) noexcept {
  out = {.bits = static_cast<std::uint64_t>(value), .isNull = false};
  return Fault::None;
}

Fault PutText(std::string& buffer, Cell& out) noexcept {
  out = {.bytes = buffer, .isNull = false};
  return Fault::None;
}

template <class Case>
Fault PutCase(TextView text, Case inCase, Cell& out, std::string& buffer) {
  buffer.resize(text.size());
  std::ranges::transform(text, buffer.begin(),
                         [&](char c) { return static_cast<char>(inCase(static_cast<unsigned char>(c))); });
  return PutText(buffer, out);
}

/// At most `count` characters from the one with that number; they count from 1, and what is before the first is it.
TextView Substr(TextView text, std::int64_t from, std::int64_t count) noexcept {
  const auto size = static_cast<std::int64_t>(text.size());
  const std::int64_t first = std::max<std::int64_t>(from, 1) - 1;
  if (first >= size || count <= 0) {
    return {};
  }
  return text.substr(static_cast<std::size_t>(first), static_cast<std::size_t>(std::min(count, size - first)));
}

struct SameCharacter {
  bool ignoresCase;
  bool operator()(char left, char right) const noexcept {
    return left == right ||
           (ignoresCase && LowerCase(static_cast<unsigned char>(left)) == LowerCase(static_cast<unsigned char>(right)));
  }
};

SameCharacter SameIn(Collation collation) noexcept {
  return {collation == Collation::RomanianNoCase};
}

bool Contains(TextView text, TextView part, Collation collation) {
  if (collation != Collation::RomanianNoCase) {
    return text.find(part) != TextView::npos;
  }
  return std::search(text.begin(), text.end(), part.begin(), part.end(), SameIn(collation)) != text.end() ||
         part.empty();
}

bool StartsWith(TextView text, TextView part, Collation collation) {
  return text.size() >= part.size() && std::ranges::equal(text.substr(0, part.size()), part, SameIn(collation));
}

std::int64_t DayOf(Operand moment) noexcept {
  const std::int64_t value = IntegerOf(moment.cell);
  if (moment.kind == Kind::Date) {
    return value;
  }
  const std::int64_t days = value / kMillisecondsPerDay;
  return value % kMillisecondsPerDay < 0 ? days - 1 : days;
}

std::int64_t PartOfDay(Function function, std::int64_t day) {
  const DateTime::Parts parts = DateTime(static_cast<double>(day)).Decode();
  return function == Function::Year ? parts.year : function == Function::Month ? parts.month : parts.day;
}

std::int64_t LengthOf(Operand text) noexcept {
  return static_cast<std::int64_t>(text.cell.bytes.size() / (text.kind == Kind::Wide ? sizeof(char16_t) : 1));
}

Fault CallCoalesce(Kind kind, std::span<const Operand> arguments, Cell& out) noexcept {
  out = {};
  const auto found = std::ranges::find_if(arguments, [](const Operand& argument) { return !argument.cell.isNull; });
  return found == arguments.end() ? Fault::None : Convert(*found, kind, out);
}

}  // namespace

const FunctionTraits* FindFunction(TextView name) noexcept {
  const auto sameLetter = [](char left, char right) { return ascii::ToLower(left) == ascii::ToLower(right); };
  const auto found = std::ranges::find_if(
      kFunctions, [&](const FunctionTraits& traits) { return std::ranges::equal(traits.name, name, sameLetter); });
  return found == kFunctions.end() ? nullptr : &*found;
}

const FunctionTraits& TraitsOf(Function function) noexcept {
  return kFunctions[static_cast<std::size_t>(function)];
}

void TypeCall(const Tree& tree, Node& call, std::span<const Place> arguments) {
  const Arguments expected(tree, call, arguments);
  switch (call.function) {
    case Function::Lower:
    case Function::Upper:
    case Function::Trim:
    case Function::RoToEn:
      call.kind = expected.Expect(0, {Kind::Text});
      break;
    case Function::Length:
      expected.Expect(0, {Kind::Text, Kind::Wide, Kind::Bytes});
      call.kind = Kind::Integer;
      break;
    case Function::Substr:
      call.kind = expected.Expect(0, {Kind::Text});
      expected.Expect(1, {Kind::Integer});
      expected.Expect(2, {Kind::Integer});
      break;
    case Function::Contains:
    case Function::StartsWith:
      expected.Expect(1, {Kind::Text});
      [[fallthrough]];
    case Function::TestCNP:
    case Function::TestCodFiscal:
    case Function::EsteIBAN:
    case Function::ValideazaSIRUTA:
      expected.Expect(0, {Kind::Text});
      call.kind = Kind::Boolean;
      break;
    case Function::Abs:
    case Function::Round:
      call.kind = expected.Expect(0, {Kind::Integer, Kind::Currency, Kind::Double});
      expected.Expect(1, {Kind::Integer});
      CheckDecimals(tree, call.kind, arguments);
      break;
    case Function::Year:
    case Function::Month:
    case Function::Day:
      expected.Expect(0, {Kind::Date, Kind::Moment});
      call.kind = Kind::Integer;
      break;
    case Function::DateOf:
      expected.Expect(0, {Kind::Date, Kind::Moment});
      call.kind = Kind::Date;
      break;
    case Function::TimeOf:
      expected.Expect(0, {Kind::Moment, Kind::Date, Kind::Time});
      call.kind = Kind::Time;
      break;
    case Function::Coalesce:
      call.kind = CommonKind(tree, arguments);
      break;
    case Function::Today:
      call.kind = Kind::Date;
      break;
  }
}

Fault Call(const Node& call, std::span<const Operand> arguments, Cell& out, std::string& buffer) {
  const auto text = [&](std::size_t index) { return arguments[index].cell.bytes; };
  const auto number = [&](std::size_t index) { return IntegerOf(arguments[index].cell); };
  switch (call.function) {
    case Function::Lower:
      return PutCase(text(0), LowerCase, out, buffer);
    case Function::Upper:
      return PutCase(text(0), UpperCase, out, buffer);
    case Function::Trim:
      out = {.bytes = kiv::Trim(text(0)), .isNull = false};
      return Fault::None;
    case Function::Length:
      return PutNumber(LengthOf(arguments[0]), out);
    case Function::Substr:
      out = {.bytes = Substr(text(0), number(1), arguments.size() > 2 ? number(2) : LengthOf(arguments[0])),
             .isNull = false};
      return Fault::None;
    case Function::Contains:
      return PutNumber(Contains(text(0), text(1), call.collation) ? 1 : 0, out);
    case Function::StartsWith:
      return PutNumber(StartsWith(text(0), text(1), call.collation) ? 1 : 0, out);
    case Function::Abs:
      return Absolute(call.kind, number(0), out);
    case Function::Round:
      return RoundTo(call.kind, arguments[0].cell, arguments.size() > 1 ? number(1) : 0, out);
    case Function::Year:
    case Function::Month:
    case Function::Day:
      return PutNumber(PartOfDay(call.function, DayOf(arguments[0])), out);
    case Function::DateOf:
      return PutNumber(DayOf(arguments[0]), out);
    case Function::TimeOf:
      return PutNumber(arguments[0].kind == Kind::Date   ? 0
                       : arguments[0].kind == Kind::Time ? number(0)
                                                         : number(0) - DayOf(arguments[0]) * kMillisecondsPerDay,
                       out);
    case Function::Coalesce:
      return CallCoalesce(call.kind, arguments, out);
    case Function::Today:
      return Fault::None;  // its value has been put in its place
    // The explanations say the same as the checks, count nothing and never throw.
    case Function::TestCNP:
      return PutNumber(ExplainTestCNP(text(0)).rule == CodeRule::None ? 1 : 0, out);
    case Function::TestCodFiscal:
      return PutNumber(ExplainTestCodFiscal(text(0)).rule == CodeRule::None ? 1 : 0, out);
    case Function::EsteIBAN:
      return PutNumber(EsteIBAN(text(0)) ? 1 : 0, out);
    case Function::ValideazaSIRUTA:
      return PutNumber(ExplainValideazaSIRUTA(text(0)).rule == CodeRule::None ? 1 : 0, out);
    case Function::RoToEn:
      buffer = kiv::RoToEn(text(0));
      return PutText(buffer, out);
  }
  return Fault::None;
}

Pattern MakePattern(TextView pattern, std::optional<TextView> escape, std::size_t position) {
  using Wildcard = Pattern::Wildcard;
  if (escape && escape->size() != 1) {
    Refuse(position, "dupa escape sta un singur caracter, nu " + Quoted(*escape));
  }
  Pattern made;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    if (escape && pattern[i] == escape->front()) {
      if (++i == pattern.size()) {
        Refuse(position, "modelul " + Quoted(pattern) + " se incheie cu caracterul de escape");
      }
      made.pieces.push_back({Wildcard::None, pattern[i]});
    } else if (pattern[i] == '%') {
      if (made.pieces.empty() || made.pieces.back().wildcard != Wildcard::Any) {
        made.pieces.push_back({Wildcard::Any, '%'});
      }
    } else {
      made.pieces.push_back({pattern[i] == '_' ? Wildcard::One : Wildcard::None, pattern[i]});
    }
  }
  return made;
}

bool IsLike(TextView text, const Pattern& pattern, Collation collation) noexcept {
  const SameCharacter isSame = SameIn(collation);
  const auto& pieces = pattern.pieces;
  std::size_t at = 0;
  std::size_t piece = 0;
  // Where the last "%" was, and where its match ends; only that one ever has to take more.
  std::size_t anyPiece = pieces.size();
  std::size_t anyEnd = 0;
  while (at < text.size()) {
    if (piece < pieces.size() && pieces[piece].wildcard == Pattern::Wildcard::Any) {
      anyPiece = piece++;
      anyEnd = at;
    } else if (piece < pieces.size() &&
               (pieces[piece].wildcard == Pattern::Wildcard::One || isSame(pieces[piece].character, text[at]))) {
      ++piece;
      ++at;
    } else if (anyPiece < pieces.size()) {
      piece = anyPiece + 1;
      at = ++anyEnd;
    } else {
      return false;
    }
  }
  return std::ranges::all_of(pieces.begin() + static_cast<std::ptrdiff_t>(piece), pieces.end(),
                             [](const Pattern::Piece& left) { return left.wildcard == Pattern::Wildcard::Any; });
}

}  // namespace kiv::query
