#include "kivtools/WinUtil/CodeFaults.h"

#include <array>
#include <utility>

#include "core/Numbers.h"

namespace kiv {
namespace {

constexpr std::size_t kLanguages = 2;
constexpr std::size_t kKinds = 4;

/// A text in each language.
using Translated = std::array<TextView, kLanguages>;

constexpr Translated kValid = {"codul este valid", "the code is valid"};
constexpr Translated kLengthIs = {"lungimea este ", "the length is "};
constexpr Translated kInsteadOf = {" in loc de ", " instead of "};
constexpr Translated kCharacter = {"caracterul ", "character "};
constexpr std::array<Translated, kKinds> kNotAllowed = {{
    {" nu este o cifra", " is not a digit"},
    {" nu este o cifra", " is not a digit"},
    {" nu este litera sau cifra", " is neither a letter nor a digit"},
    {" nu este o cifra", " is not a digit"},
}};
constexpr Translated kFirstDigit = {"prima cifra nu este 1, 2, 5 sau 6", "the first digit is not 1, 2, 5 or 6"};
constexpr Translated kFirstLetter = {"primul caracter nu este o litera", "the first character is not a letter"};
constexpr Translated kNoMonth = {"luna nu exista", "no such month"};
constexpr Translated kNoDay = {"ziua nu exista", "no such day"};
constexpr Translated kCheckDigit = {"cifra de control", "the check digit"};
constexpr Translated kCheckDigits = {"cifrele de control", "the check digits"};
constexpr Translated kNoCheckDigit = {"nicio cifra de control nu se potriveste", "no check digit fits"};
constexpr Translated kShouldBe = {" ar trebui sa fie ", " should be "};

/// Where the month begins in a personal code; the day begins later.
constexpr std::size_t kMonthAt = 3;
/// What a Romanian account number has, the only country whose length is known.
constexpr std::int32_t kRomanianAccount = 24;

[[noreturn]] void Refuse(TextView what, std::uint32_t number) {
  throw Error("CodeFaultText: " + Text(what) + ' ' + std::to_string(number) + " nu exista");
}

/// The lengths that a kind of code may have.
Text RightLengths(const CodeFault& fault, std::size_t language) {
  switch (fault.kind) {
    case CodeKind::Fiscal:
      return Text(Translated{"3 pana la 10 sau 13", "3 to 10 or 13"}.at(language));
    case CodeKind::Locality:
      return Text(Translated{"1 pana la 6", "1 to 6"}.at(language));
    case CodeKind::Account:
      if (fault.expected != kRomanianAccount) {
        return Text(Translated{"15 pana la 34", "15 to 34"}.at(language));
      }
      break;
    case CodeKind::Personal:
      break;
  }
  return std::to_string(fault.expected);
}

/// Writes one sentence.
class Sentence {
 public:
  Sentence(const CodeFault& fault, std::size_t language) : fault_(fault), language_(language) {
    text_.reserve(80);  // at once, for the longest
  }

  [[nodiscard]] Text Write() && {
    switch (fault_.rule) {
      case CodeRule::None:
        Append(kValid);
        break;
      case CodeRule::Length:
        Append(kLengthIs);
        AppendDecimal(text_, fault_.position);
        Append(kInsteadOf);
        text_ += RightLengths(fault_, language_);
        break;
      case CodeRule::Character:
        AppendPosition();
        Append(kNotAllowed.at(static_cast<std::size_t>(fault_.kind)));
        break;
      case CodeRule::FirstCharacter:
        Append(fault_.kind == CodeKind::Account ? kFirstLetter : kFirstDigit);
        break;
      case CodeRule::Date:
        Append(fault_.position == kMonthAt ? kNoMonth : kNoDay);
        AppendPositionInBrackets();
        break;
      case CodeRule::CheckDigit:
        AppendCheckDigit();
        break;
    }
    return std::move(text_);
  }

 private:
  void Append(const Translated& words) { text_ += words.at(language_); }
  void AppendPosition() {
    Append(kCharacter);
    AppendDecimal(text_, fault_.position + 1);
  }
  void AppendPositionInBrackets() {
    text_ += " (";
    AppendPosition();
    text_ += ')';
  }

  void AppendCheckDigit() {
    const bool two = fault_.kind == CodeKind::Account;
    Append(fault_.expected < 0 ? kNoCheckDigit : two ? kCheckDigits : kCheckDigit);
    AppendPositionInBrackets();
    if (fault_.expected >= 0) {
      Append(kShouldBe);
      AppendPadded(text_, fault_.expected, two ? 2 : 1);
    }
  }

  const CodeFault& fault_;
  std::size_t language_;
  Text text_;
};

}  // namespace

Text CodeFaultText(const CodeFault& fault, MessageLanguage language) {
  if (static_cast<std::size_t>(language) >= kLanguages) {
    Refuse("limba", static_cast<std::uint32_t>(language));
  }
  if (static_cast<std::size_t>(fault.kind) >= kKinds) {
    Refuse("felul de cod", static_cast<std::uint32_t>(fault.kind));
  }
  if (fault.rule > CodeRule::CheckDigit) {
    Refuse("regula", static_cast<std::uint32_t>(fault.rule));
  }
  return Sentence(fault, static_cast<std::size_t>(language)).Write();
}

}  // namespace kiv
