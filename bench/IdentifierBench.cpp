// Checks of identifiers over a register's worth of texts, one in ten damaged by a changed digit.
#include <benchmark/benchmark.h>
#include <iban.h>

#include <cstdlib>
#include <random>
#include <vector>

#include "kivtools/WinUtil/BankAndLocalityCodes.h"
#include "kivtools/WinUtil/FiscalCode.h"
#include "kivtools/WinUtil/PersonalNumericCode.h"
#include "tests/WinUtil/IdentifierRules.h"

namespace kiv {
namespace {

constexpr std::size_t kCount = 4096;

Text Digits(std::mt19937& random, std::size_t count) {
  Text digits(count, '0');
  for (char& digit : digits) {
    digit = static_cast<char>('0' + random() % 10);
  }
  return digits;
}

/// Changes one digit of the last seven in one of ten texts.
StringList Damaged(StringList texts, std::mt19937& random) {
  for (Text& text : texts) {
    if (random() % 10 == 0) {
      char& digit = text[text.size() - 1 - random() % 7];
      digit = digit == '9' ? '0' : static_cast<char>(digit + 1);
    }
  }
  return texts;
}

template <class Make>
StringList Register(Make&& make) {
  std::mt19937 random(20'241'109);
  StringList texts;
  for (std::size_t i = 0; i < kCount; ++i) {
    texts.push_back(make(random));
  }
  return Damaged(std::move(texts), random);
}

/// Mostly Romanian, some of other countries and lengths; in the written order without blanks, as the peers want them.
StringList Accounts() {
  return Register([](std::mt19937& random) {
    static constexpr TextView kBanks[] = {"BTRL", "RNCB", "BRDE", "INGB", "TREZ", "RZBR", "CECE", "BACX"};
    Text country = "RO";
    Text body;
    switch (random() % 10) {
      case 0:
        country = "DE";
        body = Digits(random, 18);
        break;
      case 1:
        country = "FR";
        body = Digits(random, 23);
        break;
      default:
        body = Text(kBanks[random() % std::size(kBanks)]) + Digits(random, 16);
        if (random() % 2 == 0) {
          body.replace(4, 5, "RON" + Digits(random, 2));
        }
    }
    Text check = std::to_string(98 - plain::RestIBANModulo97(country + "00" + body));
    return country + check.insert(0, 2 - check.size(), '0') + body;
  });
}

StringList PersonalCodes() {
  return Register([](std::mt19937& random) {
    Text code(1, "1256"[random() % 4]);
    for (const auto part : {random() % 100, 1 + random() % 12, 1 + random() % 28}) {
      code += static_cast<char>('0' + part / 10);
      code += static_cast<char>('0' + part % 10);
    }
    code += Digits(random, 5);
    return code + plain::CnpControl(code);
  });
}

StringList FiscalCodes() {
  return Register([](std::mt19937& random) {
    Text code = Digits(random, 7 + random() % 4);
    while (!plain::TestCodFiscal(code)) {
      code.back() = static_cast<char>('0' + (code.back() - '0' + 1) % 10);
    }
    return code;
  });
}

/// The textbook's account check: one remainder a character.
bool LoopIban(TextView text) {
  const std::size_t length = text.size();
  std::uint32_t remainder = 0;
  for (std::size_t i = 0; i < length; ++i) {
    const char character = text[i + 4 < length ? i + 4 : i + 4 - length];
    if (character >= '0' && character <= '9') {
      remainder = (remainder * 10 + static_cast<std::uint32_t>(character - '0')) % 97;
    } else if (character >= 'A' && character <= 'Z') {
      remainder = (remainder * 100 + static_cast<std::uint32_t>(character - 'A' + 10)) % 97;
    } else {
      return false;
    }
  }
  return remainder == 1;
}

/// The textbook's check of a personal code. It does less than TestCNP: it neither looks at the first digit nor at the
/// date, and counts nothing.
bool LoopCnp(TextView code) {
  if (code.size() != 13) {
    return false;
  }
  int sum = 0;
  for (std::size_t i = 0; i < 13; ++i) {
    if (code[i] < '0' || code[i] > '9') {
      return false;
    }
    sum += i < 12 ? (code[i] - '0') * ("279146358279"[i] - '0') : 0;
  }
  const int control = sum % 11 == 10 ? 1 : sum % 11;
  return control == code[12] - '0';
}

bool LoopFiscal(TextView code) {
  if (code.size() < 3 || code.size() > 10) {
    return false;
  }
  int sum = 0;
  for (std::size_t i = 0; i < code.size(); ++i) {
    if (code[i] < '0' || code[i] > '9') {
      return false;
    }
    sum += i + 1 < code.size() ? (code[i] - '0') * ("753217532"[i + 10 - code.size()] - '0') : 0;
  }
  return sum * 10 % 11 % 10 == code.back() - '0';
}

/// The least that any check does: load the text and test something.
bool Floor(TextView text) {
  return text[0] == text[text.size() - 1];
}

template <class Check>
void Measure(benchmark::State& state, const StringList& texts, Check&& check) {
  for (auto _ : state) {
    for (const Text& text : texts) {
      benchmark::DoNotOptimize(check(text));
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(texts.size()));
}

/// Registers one check for timing after its verdicts have been compared with the plain rule's.
template <class Check, class Plain>
void Add(const char* name, const StringList& texts, Check check, Plain plain) {
  for (const Text& text : texts) {
    if (check(text) != plain(text)) {
      std::fprintf(stderr, "%s: another verdict on \"%s\"\n", name, text.c_str());
      std::abort();
    }
  }
  benchmark::RegisterBenchmark(name, [&texts, check](benchmark::State& state) { Measure(state, texts, check); });
}

template <class Check>
void AddFloor(const char* name, const StringList& texts, Check check) {
  benchmark::RegisterBenchmark(name, [&texts, check](benchmark::State& state) { Measure(state, texts, check); });
}

const bool kRegistered = [] {
  static const StringList kAccounts = Accounts();
  static const StringList kPersonalCodes = PersonalCodes();
  static const StringList kFiscalCodes = FiscalCodes();
  static const IbanCheck kLibrary;
  Add("Iban/mixed/kiv", kAccounts, ValideazaIBAN, plain::ValideazaIBAN);
  Add("Iban/mixed/loop", kAccounts, LoopIban, plain::ValideazaIBAN);
  Add(
      "Iban/mixed/ktoblzcheck", kAccounts, [](const Text& text) { return kLibrary.check(text) == IbanCheck::OK; },
      plain::ValideazaIBAN);
  Add("Cnp/mixed/kiv", kPersonalCodes, TestCNP, plain::TestCNP);
  Add("Cnp/mixed/loop", kPersonalCodes, LoopCnp, plain::TestCNP);
  AddFloor("Cnp/mixed/floor", kPersonalCodes, Floor);
  Add("FiscalCode/mixed/kiv", kFiscalCodes, TestCodFiscal, plain::TestCodFiscal);
  Add("FiscalCode/mixed/loop", kFiscalCodes, LoopFiscal, plain::TestCodFiscal);
  AddFloor("FiscalCode/mixed/floor", kFiscalCodes, Floor);
  return true;
}();

}  // namespace
}  // namespace kiv
