#include "kivtools/WinUtil/BankAndLocalityCodes.h"

#include <array>
#include <cstddef>
#include <cstdint>

#include "core/Numbers.h"
#include "core/Trim.h"

namespace kiv {
namespace {

constexpr std::uint32_t kModulus = 97;
/// How many characters rearranging moves from the front to the end.
constexpr std::size_t kHead = 4;

/// What one character appended to a decimal number does: number * factor + value. A blank does nothing (factor 1), what
/// cannot be in an account number has factor 0, so that a product of factors tells whether all were good.
struct Symbol {
  std::uint8_t value = 0;
  std::uint8_t factor = 0;
  std::uint8_t letterOfIban = 0;  ///< one bit for each of the four letters
};

constexpr TextView kIban = "IBAN";
constexpr std::uint8_t kAllLettersOfIban = 0b1111;

constexpr char UpperCase(char character) {
  return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
}

constexpr std::array<Symbol, 256> MakeSymbols() {
  std::array<Symbol, 256> symbols{};
  symbols[' '] = {0, 1, 0};
  for (std::size_t digit = 0; digit < 10; ++digit) {
    symbols['0' + digit] = {static_cast<std::uint8_t>(digit), 10, 0};
  }
  for (std::size_t letter = 0; letter < 26; ++letter) {
    const std::size_t place = kIban.find(static_cast<char>('A' + letter));
    const auto bit = static_cast<std::uint8_t>(place == TextView::npos ? 0 : 1U << place);
    symbols['A' + letter] = symbols['a' + letter] = {static_cast<std::uint8_t>(10 + letter), 100, bit};
  }
  return symbols;
}

constexpr std::array<Symbol, 256> kSymbols = MakeSymbols();

constexpr const Symbol& SymbolOf(char character) {
  return kSymbols[static_cast<unsigned char>(character)];
}

/// The remainder of a number that grows at its end by the digits of characters.
class Remainder {
 public:
  void Append(TextView characters) noexcept {
    // Eight characters make at most 16 digits, which with a remainder in front of them fit 64 bits.
    while (characters.size() >= 8) {
      AppendFour(characters.data());
      AppendFour(characters.data() + 4);
      number_ %= kModulus;
      characters.remove_prefix(8);
    }
    if (characters.size() >= 4) {
      AppendFour(characters.data());
      number_ %= kModulus;
      characters.remove_prefix(4);
    }
    for (const char character : characters) {
      const Symbol& symbol = SymbolOf(character);
      Add(symbol.value, symbol.factor, symbol.letterOfIban);
    }
    number_ %= kModulus;
  }

  /// Whether only digits, letters and blanks came and the remainder is 1.
  [[nodiscard]] bool IsOne() const noexcept { return allGood_ && number_ == 1; }

  /// Whether each letter of "IBAN" came at least once, so that the word may have been among the characters.
  [[nodiscard]] bool MayHoldIban() const noexcept { return lettersOfIban_ == kAllLettersOfIban; }

 private:
  /// Combines in pairs, so that the multiplications do not wait for each other.
  void AppendFour(const char* characters) noexcept {
    const Symbol& a = SymbolOf(characters[0]);
    const Symbol& b = SymbolOf(characters[1]);
    const Symbol& c = SymbolOf(characters[2]);
    const Symbol& d = SymbolOf(characters[3]);
    const std::uint32_t left = std::uint32_t{a.value} * b.factor + b.value;
    const std::uint32_t right = std::uint32_t{c.value} * d.factor + d.value;
    const std::uint32_t rightFactor = std::uint32_t{c.factor} * d.factor;
    Add(left * rightFactor + right, std::uint32_t{a.factor} * b.factor * rightFactor,
        static_cast<std::uint8_t>(a.letterOfIban | b.letterOfIban | c.letterOfIban | d.letterOfIban));
  }

  void Add(std::uint32_t value, std::uint32_t factor, std::uint8_t lettersOfIban) noexcept {
    number_ = number_ * factor + value;
    allGood_ &= factor != 0;
    lettersOfIban_ |= lettersOfIban;
  }

  std::uint64_t number_ = 0;
  bool allGood_ = true;
  std::uint8_t lettersOfIban_ = 0;
};

/// Where the first `count` characters that are not blanks end; takes from `count` those that are there.
std::size_t EndOfNonBlanks(TextView text, std::size_t& count) noexcept {
  std::size_t at = 0;
  for (; at < text.size() && count > 0; ++at) {
    count -= text[at] != ' ' ? 1 : 0;
  }
  return at;
}

/// The remainder of an account number of fewer than four characters, which lie in two pieces. Appending a copy of the
/// first four to so short a text doubles it, and taking four away in front then leaves the last two of three characters
/// and nothing of two or one.
Remainder RemainderOfShort(TextView before, TextView after, std::size_t length) noexcept {
  Remainder remainder;
  std::size_t skipped = length == kHead - 1 ? 1 : length;
  const std::size_t inBefore = EndOfNonBlanks(before, skipped);
  const std::size_t inAfter = EndOfNonBlanks(after, skipped);
  remainder.Append(before.substr(inBefore));
  remainder.Append(after.substr(inAfter));
  return remainder;
}

/// The remainder of the account number that lies in two pieces, with "IBAN" cut out between them.
Remainder RemainderOf(TextView before, TextView after) noexcept {
  std::size_t missing = kHead;
  const std::size_t headInBefore = EndOfNonBlanks(before, missing);
  const std::size_t headInAfter = EndOfNonBlanks(after, missing);
  if (missing > 0) {
    return RemainderOfShort(before, after, kHead - missing);
  }
  Remainder remainder;
  remainder.Append(before.substr(headInBefore));
  remainder.Append(after.substr(headInAfter));
  remainder.Append(before.substr(0, headInBefore));
  remainder.Append(after.substr(0, headInAfter));
  return remainder;
}

/// The remainder without the first "IBAN", which may have blanks within.
Remainder RemainderWithoutIban(TextView text) noexcept {
  std::size_t start = 0;
  std::size_t matched = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == ' ') {
      continue;
    }
    const char character = UpperCase(text[at]);
    if (character != kIban[matched]) {
      matched = 0;  // no letter comes twice in the word, so only this one can begin it anew
    }
    if (character == kIban[matched]) {
      start = matched == 0 ? at : start;
      if (++matched == kIban.size()) {
        return RemainderOf(text.substr(0, start), text.substr(at + 1));
      }
    }
  }
  return RemainderOf(text, {});
}

/// The value of one digit. Throws ConversionError for any other character.
std::int32_t DigitValue(char character) {
  if (character < '0' || character > '9') {
    RefuseInteger({&character, 1});
  }
  return character - '0';
}

std::int32_t SumaCifrelor(std::int32_t number) noexcept {
  std::int32_t sum = 0;
  for (; number > 0; number /= 10) {
    sum += number % 10;
  }
  return sum;
}

}  // namespace

bool ValideazaIBAN(TextView account) noexcept {
  const Remainder remainder = RemainderOf(account, {});
  return remainder.MayHoldIban() ? RemainderWithoutIban(account).IsOne() : remainder.IsOne();
}

bool EsteIBAN(TextView text) noexcept {
  const TextView account = Trim(text);
  return !account.empty() && UpperCase(account.front()) >= 'A' && UpperCase(account.front()) <= 'Z' &&
         ValideazaIBAN(account);
}

Text ExtrageIBANdinIBANCuAnalitic(TextView text) {
  return Text(Trim(text.substr(0, text.find_first_of("-."))));
}

Text EliminaCoduriDinIBAN(TextView text) {
  std::size_t missing = kHead;
  return Text(Trim(text.substr(EndOfNonBlanks(text, missing))));
}

bool ValideazaSIRUTA(TextView code) {
  constexpr std::array<std::int32_t, 5> kWeights = {7, 5, 3, 2, 1};
  constexpr std::size_t kLength = kWeights.size() + 1;
  std::array<std::int32_t, kLength> digits{};  // what is missing in front counts as 0
  const std::size_t present = code.size() < kLength ? code.size() : kLength;
  for (std::size_t i = 0; i < present; ++i) {
    digits[kLength - present + i] = DigitValue(code[i]);
  }
  std::int32_t sum = 0;
  for (std::size_t i = 0; i < kWeights.size(); ++i) {
    sum += SumaCifrelor(kWeights[i] * digits[i]);
  }
  // No further "mod 10": a check digit of 0 or 1 never passes, and hosts rely on exactly these codes being refused.
  return 11 - sum % 10 == digits.back();
}

}  // namespace kiv
