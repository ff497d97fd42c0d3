#include "kivtools/WinUtil/Money.h"

#include <algorithm>
#include <array>
#include <limits>

#include "core/Numbers.h"

namespace kiv {
namespace {

constexpr std::int64_t kUnit = 10'000;  // ten-thousandths in one leu

/// The magnitude as an unsigned number: the smallest amount has no positive counterpart in 64 signed bits.
std::uint64_t Magnitude(std::int64_t value) {
  const auto bits = static_cast<std::uint64_t>(value);
  return value < 0 ? 0 - bits : bits;
}

Text Format(Currency amount, std::int32_t decimals, TextView separator) {
  const std::uint64_t magnitude = Magnitude(amount.Raw());
  // Sign, grouped digits, separator, four decimals.
  std::array<char, 1 + kMostGroupedCharacters + 2 + 4> buffer;
  char* const wholeEnd = buffer.data() + 1 + kMostGroupedCharacters;
  char* begin = WriteGroupedBefore(wholeEnd, magnitude / kUnit);
  if (amount.Raw() < 0) {
    *--begin = '-';
  }
  char* end = wholeEnd;
  if (decimals != 0) {
    end = std::copy(separator.begin(), separator.end(), end);
    WriteFourDigitsBefore(end + 4, static_cast<std::uint32_t>(magnitude % kUnit));
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
    if (raw_ > (kMost - digit) / 10) {
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
  static constexpr std::uint64_t kMost = std::numeric_limits<std::int64_t>::max();
  std::uint64_t raw_ = 0;
  int decimals_ = 0;
  bool afterComma_ = false;
  bool tooLarge_ = false;
};

}  // namespace

Text CurrencyToRoStr(Currency amount, std::int32_t decimals) {
  return Format(amount, decimals, ", ");
}

Text CurrencyToRoStrFaraSpatiu(Currency amount, std::int32_t decimals) {
  return Format(amount, decimals, ",");
}

Text CurrencyToRoStrRON(Currency amount, std::int32_t /*decimals*/) {
  std::int64_t quotient = amount.Raw() / kUnit;
  const std::int64_t rest = amount.Raw() % kUnit;
  const std::int64_t twice = 2 * (rest < 0 ? -rest : rest);
  if (twice > kUnit || (twice == kUnit && quotient % 2 != 0)) {
    quotient += rest < 0 ? -1 : 1;
  }
  Text text = Format(Currency::FromRaw(quotient), 4, ", ");
  if (text.ends_with("00")) {
    text.resize(text.size() - 2);
  }
  return text;
}

Currency RoStrToCurrency(TextView text) {
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
