#include "kivtools/WinUtil/Money.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <utility>

#include "core/GroupedDigits.h"
#include "core/Numbers.h"

namespace kiv {
namespace {

constexpr std::uint64_t kMostRaw = std::numeric_limits<std::int64_t>::max();

/// The magnitude as an unsigned number: the smallest amount has no positive counterpart in 64 signed bits.
std::uint64_t Magnitude(std::int64_t value) {
  const auto bits = static_cast<std::uint64_t>(value);
  return value < 0 ? 0 - bits : bits;
}

Text Format(Currency amount, std::int32_t decimals, bool blankAfterComma) {
  const std::uint64_t magnitude = Magnitude(amount.Raw());
  // Sign, grouped digits, comma and blank, four decimals.
  std::array<char, 1 + kGroupedRoom + 2 + 4> buffer;
  char* end = buffer.data() + 1 + kGroupedRoom;
  char* begin = WriteGroupedBefore(end, magnitude / Currency::kPerUnit);
  begin[-1] = '-';
  begin -= amount.Raw() < 0 ? 1 : 0;
  if (decimals != 0) {
    end[0] = ',';
    end[1] = ' ';
    end += blankAfterComma ? 2 : 1;
    WriteFourDigits(end, static_cast<std::uint32_t>(magnitude % Currency::kPerUnit));
    end += std::clamp(decimals, 0, 4);
  }
  return {begin, end};
}

enum class Kind : std::uint8_t { Digit, Skipped, Comma, Minus, Foreign };

constexpr auto kKinds = [] {
  std::array<Kind, 256> kinds{};
  kinds.fill(Kind::Foreign);
  std::fill(kinds.begin() + '0', kinds.begin() + '9' + 1, Kind::Digit);
  kinds['.'] = Kind::Skipped;
  kinds[' '] = Kind::Skipped;
  kinds[','] = Kind::Comma;
  kinds['-'] = Kind::Minus;
  return kinds;
}();

/// Gathers the digits of an amount; notices a sum too large and says so only at the end, after the text's own faults.
class AmountReader {
 public:
  void Append(unsigned digit) {
    if (decimals_ == 4) {
      return;  // cut
    }
    decimals_ += afterComma_ ? 1 : 0;
    if (raw_ > (kMostRaw - digit) / 10) {
      tooLarge_ = true;
      return;
    }
    raw_ = raw_ * 10 + digit;
  }

  /// False if there was a comma before.
  bool Comma() { return !std::exchange(afterComma_, true); }

  [[nodiscard]] bool Empty() const { return raw_ == 0 && !afterComma_; }

  Currency Result(bool negative, TextView text) {
    while (decimals_ < 4) {
      afterComma_ = true;
      Append(0);
    }
    if (tooLarge_) {
      RefuseInteger(text);
    }
    const auto raw = static_cast<std::int64_t>(raw_);
    return Currency::FromRaw(negative ? -raw : raw);
  }

 private:
  std::uint64_t raw_ = 0;
  int decimals_ = 0;
  bool afterComma_ = false;
  bool tooLarge_ = false;
};

/// Four bytes as one number, the first in the lowest place.
std::uint32_t LoadFour(const char* bytes) {
  std::uint32_t word = 0;
  for (unsigned i = 0; i < 4; ++i) {  // compilers make one load of it
    word |= std::uint32_t{static_cast<unsigned char>(bytes[i])} << (8 * i);
  }
  return word;
}

/// Whether each byte is 0 to 9.
bool AreDigits(std::uint32_t values) {
  return ((values | (values + 0x0606'0606U)) & 0xF0F0'F0F0U) == 0;
}

/// The number whose four digits are these bytes, the first in the lowest byte.
std::uint32_t FourDigitNumber(std::uint32_t digits) {
  const std::uint32_t pairs = digits * 10 + (digits >> 8U);  // of interest: bytes 0 and 2
  return (pairs & 0xFFU) * 100 + ((pairs >> 16U) & 0xFFU);
}

/// A text read from its front.
struct Reader {
  const char* at;
  const char* end;

  bool Take(char character) {
    const bool taken = at != end && *at == character;
    at += taken ? 1 : 0;
    return taken;
  }

  /// Appends digits to `value`, at most that many; returns how many.
  std::ptrdiff_t TakeDigits(std::uint64_t& value, std::ptrdiff_t most) {
    const char* const begin = at;
    const char* const stop = end - at < most ? end : at + most;
    for (; at != stop && ascii::IsDigit(*at); ++at) {
      value = value * 10 + static_cast<unsigned>(*at - '0');
    }
    return at - begin;
  }

  /// Appends a dot's group of three digits, if one follows.
  bool TakeGroup(std::uint64_t& value) {
    if (end - at < 4) {
      return false;
    }
    const std::uint32_t digits = LoadFour(at) ^ 0x3030'302EU;  // the dot counts as a leading zero
    if (!AreDigits(digits) || (digits & 0xFFU) != 0) {
      return false;
    }
    value = value * 1000 + FourDigitNumber(digits);
    at += 4;
    return true;
  }

  /// Appends up to four decimals, and zeros for those that are missing.
  void TakeDecimals(std::uint64_t& value) {
    if (end - at == 4) {
      if (const std::uint32_t digits = LoadFour(at) ^ 0x3030'3030U; AreDigits(digits)) {
        value = value * Currency::kPerUnit + FourDigitNumber(digits);
        at += 4;
        return;
      }
    }
    constexpr std::array<std::uint32_t, 5> kScale = {10'000, 1000, 100, 10, 1};
    const std::ptrdiff_t decimals = TakeDigits(value, 4);
    value *= kScale[static_cast<std::size_t>(decimals)];
  }
};

/// Reads the shape that this library and most programs write: a sign, groups of three digits after dots or no dots at
/// all, a comma, a blank, up to four decimals. Nothing for any other text, which is then read character by character.
std::optional<std::int64_t> ReadUsualShape(TextView text) {
  Reader reader = {text.data(), text.data() + text.size()};
  const bool negative = reader.Take('-');
  // 15 whole digits and four decimals stay below 2^64.
  std::uint64_t raw = 0;
  if (reader.TakeDigits(raw, 15) <= 3) {
    for (int groups = 0; groups < 4 && reader.TakeGroup(raw); ++groups) {
    }
  }
  if (reader.Take(',')) {
    reader.Take(' ');
    reader.TakeDecimals(raw);
  } else {
    raw *= Currency::kPerUnit;
  }
  if (reader.at != reader.end || raw > kMostRaw) {
    return std::nullopt;
  }
  const auto magnitude = static_cast<std::int64_t>(raw);
  return negative ? -magnitude : magnitude;
}

}  // namespace

Text CurrencyToRoStr(Currency amount, std::int32_t decimals) {
  return Format(amount, decimals, true);
}

Text CurrencyToRoStrFaraSpatiu(Currency amount, std::int32_t decimals) {
  return Format(amount, decimals, false);
}

Text CurrencyToRoStrRON(Currency amount, std::int32_t /*decimals*/) {
  std::int64_t quotient = amount.Raw() / Currency::kPerUnit;
  const std::int64_t rest = amount.Raw() % Currency::kPerUnit;
  const std::int64_t twice = 2 * (rest < 0 ? -rest : rest);
  if (twice > Currency::kPerUnit || (twice == Currency::kPerUnit && quotient % 2 != 0)) {
    quotient += rest < 0 ? -1 : 1;
  }
  Text text = Format(Currency::FromRaw(quotient), 4, true);
  if (text.ends_with("00")) {
    text.resize(text.size() - 2);
  }
  return text;
}

Currency RoStrToCurrency(TextView text) {
  if (const auto raw = ReadUsualShape(text)) {
    return Currency::FromRaw(*raw);
  }
  AmountReader reader;
  bool negative = false;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    switch (kKinds[byte]) {
      case Kind::Digit:
        reader.Append(byte - unsigned{'0'});
        break;
      case Kind::Skipped:
        break;
      case Kind::Comma:
        if (!reader.Comma()) {
          throw Error(Text(text) + " include doua virgule");
        }
        break;
      case Kind::Minus:
        if (at == 0) {
          if (!reader.Empty()) {
            throw Error("Include caracterul \"-\" intr-o pozitie neasteptata");
          }
          negative = true;
        }
        break;
      case Kind::Foreign:
        throw Error(Text(text) + " nu este un numar");
    }
  }
  return reader.Result(negative, text);
}

}  // namespace kiv
