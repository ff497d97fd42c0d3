#pragma once

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cstdint>
#include <optional>

#include "kivtools/Types.h"

/// The plain rules of the identifiers, step by step: what the library's fast ones are held against in tests and
/// fuzzers.
namespace kiv::plain {

inline Text LitereInCifreIBAN(Text s) {
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    for (std::size_t at = s.find(letter); at != Text::npos; at = s.find(letter, at)) {
      s.replace(at, 1, std::to_string(letter - 55));
    }
  }
  return s;
}

/// The remainder 0..96, -1 when a piece was not a number.
inline std::int32_t RestIBANModulo97(Text s) {
  std::transform(s.begin(), s.end(), s.begin(), [](char c) { return c >= 'a' && c <= 'z' ? char(c - 32) : c; });
  if (const std::size_t at = s.find("IBAN"); at != Text::npos) {
    s.erase(at, 4);
  }
  s += s.substr(0, 4);
  s = LitereInCifreIBAN(s.erase(0, 4));
  std::size_t n = 9;
  std::int32_t r = 0;
  Text c;
  bool failed = false;
  for (std::size_t p = 0; p < s.size();) {
    n = std::min(n, s.size());
    c += s.substr(p, n);
    const bool number = std::all_of(c.begin(), c.end(), [](char digit) { return digit >= '0' && digit <= '9'; });
    failed |= !number;
    r = number ? std::stoi(c) % 97 : 0;
    p += n;
    c = std::to_string(r);
    n = 9 - c.size();
  }
  return failed ? -1 : r;
}

inline bool ValideazaIBAN(TextView text) {
  Text s(text);
  s.erase(std::remove(s.begin(), s.end(), ' '), s.end());
  return RestIBANModulo97(s) == 1;
}

inline bool AllDigits(TextView text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

/// The control digit of the first twelve digits.
inline char CnpControl(TextView code) {
  int sum = 0;
  for (std::size_t i = 0; i < 12; ++i) {
    sum += (code[i] - '0') * ("279146358279"[i] - '0');
  }
  return sum % 11 == 10 ? '1' : static_cast<char>('0' + sum % 11);
}

inline bool TestCNP(TextView code) {
  if (code.size() != 13 || !AllDigits(code) || TextView("1256").find(code[0]) == TextView::npos) {
    return false;
  }
  const auto number = [code](std::size_t at) { return std::stoi(Text(code.substr(at, 2))); };
  const std::chrono::year_month_day date{std::chrono::year{number(1) + (number(1) < 5 ? 2000 : 1900)},
                                         std::chrono::month(static_cast<unsigned>(number(3))),
                                         std::chrono::day(static_cast<unsigned>(number(5)))};
  return date.ok() && code[12] == CnpControl(code);
}

inline bool TestCodFiscal(TextView code) {
  if (!AllDigits(code)) {
    return false;
  }
  if (code.size() == 13) {
    return plain::TestCNP(code);
  }
  if (code.size() < 3 || code.size() > 10) {
    return false;
  }
  const Text reversed(code.rbegin(), code.rend());
  int sum = 0;
  for (std::size_t i = 1; i < reversed.size(); ++i) {
    sum += (reversed[i] - '0') * ("235712357"[i - 1] - '0');
  }
  const int control = sum * 10 % 11;
  return (control == 10 ? 0 : control) == reversed[0] - '0';
}

/// Nothing where the rule raises.
inline std::optional<bool> ValideazaSIRUTA(TextView code) {
  Text s(code);
  while (s.size() < 6) {
    s.insert(0, "0");
  }
  if (!AllDigits(TextView(s).substr(0, 6))) {
    return std::nullopt;
  }
  int sum = 0;
  for (std::size_t i = 0; i < 5; ++i) {
    const int product = (s[i] - '0') * ("75321"[i] - '0');
    sum += product / 10 + product % 10;
  }
  return 11 - sum % 10 == s[5] - '0';
}

}  // namespace kiv::plain
