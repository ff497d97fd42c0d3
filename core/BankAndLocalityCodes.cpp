#include "kivtools/WinUtil/BankAndLocalityCodes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "core/Numbers.h"
#include "core/Trim.h"
#include "kivtools/Ascii.h"

namespace kiv {
namespace {

constexpr std::uint32_t kModulus = 97;
/// How many characters rearranging moves from the front to the end.
constexpr std::size_t kHead = 4;

/// What appending characters does to a decimal number: number * factor + value. The factor is the upper half of the
/// word, the value the lower one, so that one multiplication joins two runs. Up to four characters fit.
using Run = std::uint64_t;

constexpr Run MakeRun(std::uint64_t value, std::uint64_t factor) {
  return factor << 32U | value;
}
constexpr std::uint64_t Factor(Run run) {
  return run >> 32U;
}
constexpr std::uint64_t Value(Run run) {
  return run & 0xFFFF'FFFFU;
}
constexpr Run Join(Run first, Run second) {
  return first * Factor(second) + Value(second);
}

constexpr TextView kIban = "IBAN";
/// Marks of characters: one bit for each letter of "IBAN", one for what cannot be in an account number, one for blanks.
constexpr std::uint8_t kLettersOfIban = 0b00'1111;
constexpr std::uint8_t kForeign = 0b01'0000;
constexpr std::uint8_t kBlank = 0b10'0000;

struct Characters {
  std::array<Run, 256> runs{};
  std::array<std::uint8_t, 256> marks{};
};

constexpr Characters MakeCharacters() {
  Characters characters;
  characters.marks.fill(kForeign);
  const auto accept = [&characters](std::size_t character, Run run) {
    characters.runs[character] = run;
    characters.marks[character] = 0;
  };
  accept(' ', MakeRun(0, 1));  // changes nothing wherever it is
  characters.marks[' '] = kBlank;
  for (std::size_t digit = 0; digit < 10; ++digit) {
    accept('0' + digit, MakeRun(digit, 10));
  }
  for (std::size_t letter = 0; letter < 26; ++letter) {
    accept('A' + letter, MakeRun(10 + letter, 100));
    accept('a' + letter, MakeRun(10 + letter, 100));
  }
  for (std::size_t i = 0; i < kIban.size(); ++i) {
    const auto letter = static_cast<unsigned char>(kIban[i]);
    characters.marks[letter] = characters.marks[letter - 'A' + 'a'] = static_cast<std::uint8_t>(1U << i);
  }
  return characters;
}

constexpr Characters kCharacters = MakeCharacters();

/// The remainder of a number that grows at its end by the digits of characters.
class Remainder {
 public:
  /// Works on a copy, which stays in registers: the bytes that are read might otherwise alias the members.
  [[nodiscard]] Remainder With(TextView characters) const noexcept {
    Remainder sum = *this;
    for (; characters.size() >= 4; characters.remove_prefix(4)) {
      sum.AddFour(characters.data());
    }
    for (const char character : characters) {
      sum.Add(sum.RunOf(character));
    }
    return sum;
  }

  /// The same for exactly four characters.
  [[nodiscard]] Remainder WithFour(const char* characters) const noexcept {
    Remainder sum = *this;
    sum.AddFour(characters);
    return sum;
  }

  /// Whether only digits, letters and blanks came and the remainder is 1.
  [[nodiscard]] bool IsOne() const noexcept { return (marks_ & kForeign) == 0 && Modulo97() == 1; }

  /// The remainder, where only digits, letters and blanks came.
  [[nodiscard]] std::uint32_t Modulo97() const noexcept { return static_cast<std::uint32_t>(number_ % kModulus); }

  /// Whether each letter of "IBAN" came at least once, so that the word may have been among the characters.
  [[nodiscard]] bool MayHoldIban() const noexcept { return (marks_ & kLettersOfIban) == kLettersOfIban; }

 private:
  Run RunOf(char character) noexcept {
    const auto index = static_cast<unsigned char>(character);
    marks_ |= kCharacters.marks[index];
    return kCharacters.runs[index];
  }

  /// Joins in pairs, so that the multiplications do not wait for each other.
  void AddFour(const char* characters) noexcept {
    const Run left = Join(RunOf(characters[0]), RunOf(characters[1]));
    const Run right = Join(RunOf(characters[2]), RunOf(characters[3]));
    Add(Join(left, right));
  }

  /// The number is kept small but not reduced, because a division would cost more than all the rest: the part above
  /// 2^32 counts 35 times, since 2^32 leaves 35. It stays below 2^35, and times 10^8 well below 2^64.
  void Add(Run run) noexcept {
    constexpr std::uint64_t kLeftOf2To32 = (std::uint64_t{1} << 32U) % kModulus;
    const std::uint64_t longer = number_ * Factor(run) + Value(run);
    number_ = (longer >> 32U) * kLeftOf2To32 + (longer & 0xFFFF'FFFFU);
  }

  std::uint64_t number_ = 0;
  std::uint8_t marks_ = 0;
};

/// Where the first `count` characters that are not blanks end; takes from `count` those that are there.
std::size_t EndOfNonBlanks(TextView text, std::size_t& count) noexcept {
  std::size_t at = 0;
  for (; at < text.size() && count > 0; ++at) {
    count -= text[at] != ' ' ? 1 : 0;
  }
  return at;
}

/// An account number in two pieces, between which "IBAN" was.
struct Pieces {
  TextView before;
  TextView after;
};

/// The remainder of an account number of fewer than four characters. Appending a copy of the first four to so short a
/// text doubles it, and taking four away in front then leaves the last two of three characters and nothing of fewer.
Remainder RemainderOfShort(Pieces account, std::size_t length) noexcept {
  std::size_t dropped = length == kHead - 1 ? 1 : length;
  account.before.remove_prefix(EndOfNonBlanks(account.before, dropped));
  account.after.remove_prefix(EndOfNonBlanks(account.after, dropped));
  return Remainder().With(account.before).With(account.after);
}

Remainder RemainderOf(Pieces account) noexcept {
  std::size_t missing = kHead;
  const std::size_t inBefore = EndOfNonBlanks(account.before, missing);
  const std::size_t inAfter = EndOfNonBlanks(account.after, missing);
  if (missing > 0) {
    return RemainderOfShort(account, kHead - missing);
  }
  const Remainder body = Remainder().With(account.before.substr(inBefore)).With(account.after.substr(inAfter));
  return body.With(account.before.substr(0, inBefore)).With(account.after.substr(0, inAfter));
}

/// The text without its first "IBAN", which may have blanks within.
Pieces WithoutIban(TextView text) noexcept {
  std::size_t start = 0;
  std::size_t matched = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == ' ') {
      continue;
    }
    const char character = ascii::ToUpper(text[at]);
    if (character != kIban[matched]) {
      matched = 0;  // no letter comes twice in the word, so only this one can begin it anew
    }
    if (character == kIban[matched]) {
      start = matched == 0 ? at : start;
      if (++matched == kIban.size()) {
        return {text.substr(0, start), text.substr(at + 1)};
      }
    }
  }
  return {text, {}};
}

/// The rare account numbers: written with "IBAN", with blanks in front, or very short.
[[gnu::noinline]] bool IsValidByAllRules(TextView account) noexcept {
  return RemainderOf(WithoutIban(account)).IsOne();
}

/// The lengths of account numbers: of all countries, and of this one, which is known for certain.
constexpr std::size_t kShortestAccount = 15;
constexpr std::size_t kLongestAccount = 34;
constexpr std::size_t kRomanianAccount = 24;

/// An account number's characters that count, in what an explanation needs.
struct Parts {
  std::array<const char*, kHead> head{};
  std::size_t length = 0;
  Remainder body;
};

/// The parts of an account number without blanks and without "IBAN".
Parts PartsOfPlain(TextView account) noexcept {
  Parts parts;
  parts.length = account.size();
  for (std::size_t i = 0; i < std::min(kHead, account.size()); ++i) {
    parts.head.at(i) = &account[i];
  }
  parts.body = parts.body.With(account.substr(std::min(kHead, account.size())));
  return parts;
}

Parts PartsOf(Pieces account) noexcept {
  Parts parts;
  for (const TextView piece : {account.before, account.after}) {
    std::size_t bodyAt = piece.size();
    for (std::size_t at = 0; at < piece.size(); ++at) {
      if (piece[at] == ' ') {
        continue;
      }
      if (parts.length < kHead) {
        parts.head.at(parts.length) = &piece[at];
      } else {
        bodyAt = std::min(bodyAt, at);
      }
      ++parts.length;
    }
    parts.body = parts.body.With(piece.substr(bodyAt));
  }
  return parts;
}

/// The length that an account number of that many characters should have; 0 where it may have its own.
std::size_t RightLength(const Parts& parts) noexcept {
  const bool known = parts.length >= 2;
  if (known && ascii::ToUpper(*parts.head[0]) == 'R' && ascii::ToUpper(*parts.head[1]) == 'O') {
    return parts.length == kRomanianAccount ? 0 : kRomanianAccount;
  }
  const std::size_t nearest = std::clamp(parts.length, kShortestAccount, kLongestAccount);
  return parts.length == nearest ? 0 : nearest;
}

/// The fault of an account number that has one.
[[gnu::noinline]] CodeFault ExplainInvalid(TextView account) noexcept {
  const auto markOf = [](char character) { return kCharacters.marks[static_cast<unsigned char>(character)]; };
  std::uint8_t marks = 0;
  for (const char character : account) {
    marks |= markOf(character);
  }
  if ((marks & kForeign) != 0) {
    const auto foreign = std::ranges::find(account, kForeign, markOf);
    return {CodeKind::Account, CodeRule::Character, static_cast<std::size_t>(foreign - account.begin())};
  }
  const bool plain = (marks & kBlank) == 0 && (marks & kLettersOfIban) != kLettersOfIban;
  const Parts parts = plain ? PartsOfPlain(account) : PartsOf(WithoutIban(account));
  if (const std::size_t right = RightLength(parts); right != 0) {
    return {CodeKind::Account, CodeRule::Length, parts.length, static_cast<std::int32_t>(right)};
  }
  const std::array<char, kHead> head = {*parts.head[0], *parts.head[1], '0', '0'};
  const std::uint32_t right = kModulus + 1 - parts.body.WithFour(head.data()).Modulo97();
  return {CodeKind::Account, CodeRule::CheckDigit, static_cast<std::size_t>(parts.head[2] - account.data()),
          static_cast<std::int32_t>(right)};
}

/// The value of one digit. Throws ConversionError for any other character.
std::int32_t DigitValue(char character) {
  if (!ascii::IsDigit(character)) {
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

constexpr std::array<std::int32_t, 5> kLocalityWeights = {7, 5, 3, 2, 1};
constexpr std::size_t kLocalityLength = kLocalityWeights.size() + 1;
using LocalityDigits = std::array<std::int32_t, kLocalityLength>;

/// The first six digits of a locality code; what is missing in front counts as 0. Throws ConversionError.
LocalityDigits DigitsOf(TextView code) {
  LocalityDigits digits{};
  const std::size_t present = code.size() < kLocalityLength ? code.size() : kLocalityLength;
  for (std::size_t i = 0; i < present; ++i) {
    digits[kLocalityLength - present + i] = DigitValue(code[i]);
  }
  return digits;
}

/// What the last digit has to be, 2 to 11. No further "mod 10": a check digit of 0 or 1 never passes, and hosts rely on
/// exactly these codes being refused.
std::int32_t CheckDigitOf(const LocalityDigits& digits) noexcept {
  std::int32_t sum = 0;
  for (std::size_t i = 0; i < kLocalityWeights.size(); ++i) {
    sum += SumaCifrelor(kLocalityWeights[i] * digits[i]);
  }
  return 11 - sum % 10;
}

}  // namespace

bool ValideazaIBAN(TextView account) noexcept {
  const bool plainHead =
      account.size() > kHead && account[0] != ' ' && account[1] != ' ' && account[2] != ' ' && account[3] != ' ';
  if (plainHead) {
    const Remainder remainder = Remainder().With(account.substr(kHead)).WithFour(account.data());
    if (!remainder.MayHoldIban()) {
      return remainder.IsOne();
    }
  }
  return IsValidByAllRules(account);
}

CodeFault ExplainValideazaIBAN(TextView account) noexcept {
  return ValideazaIBAN(account) ? CodeFault{CodeKind::Account} : ExplainInvalid(account);
}

bool EsteIBAN(TextView text) noexcept {
  const TextView account = Trim(text);
  return !account.empty() && ascii::IsUpper(ascii::ToUpper(account.front())) && ValideazaIBAN(account);
}

CodeFault ExplainEsteIBAN(TextView text) noexcept {
  const TextView account = Trim(text);
  if (account.empty()) {
    return {CodeKind::Account, CodeRule::Length, 0, static_cast<std::int32_t>(kShortestAccount)};
  }
  const auto start = static_cast<std::size_t>(account.data() - text.data());
  if (!ascii::IsUpper(ascii::ToUpper(account.front()))) {
    return {CodeKind::Account, CodeRule::FirstCharacter, start};
  }
  CodeFault fault = ExplainValideazaIBAN(account);
  if (fault.rule == CodeRule::Character || fault.rule == CodeRule::CheckDigit) {
    fault.position += start;
  }
  return fault;
}

Text ExtrageIBANdinIBANCuAnalitic(TextView text) {
  return Text(Trim(text.substr(0, text.find_first_of("-."))));
}

Text EliminaCoduriDinIBAN(TextView text) {
  std::size_t missing = kHead;
  return Text(Trim(text.substr(EndOfNonBlanks(text, missing))));
}

bool ValideazaSIRUTA(TextView code) {
  const LocalityDigits digits = DigitsOf(code);
  return CheckDigitOf(digits) == digits.back();
}

CodeFault ExplainValideazaSIRUTA(TextView code) noexcept {
  const TextView read = code.substr(0, kLocalityLength);
  if (read.empty()) {
    return {CodeKind::Locality, CodeRule::Length, 0, 1};
  }
  if (const auto other = std::ranges::find_if_not(read, ascii::IsDigit<char>); other != read.end()) {
    return {CodeKind::Locality, CodeRule::Character, static_cast<std::size_t>(other - read.begin())};
  }
  const LocalityDigits digits = DigitsOf(read);
  const std::int32_t right = CheckDigitOf(digits);
  if (right == digits.back()) {
    return {CodeKind::Locality};
  }
  return {CodeKind::Locality, CodeRule::CheckDigit, read.size() - 1, right <= 9 ? right : -1};
}

}  // namespace kiv
