#include "apps/kivtools/Numbers.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>

#include "apps/kivtools/InputError.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/input/Blanks.h"
#include "kivtools/Ascii.h"
#include "kivtools/Currency.h"

namespace kivtools {
namespace {

bool AllDigits(std::string_view text) noexcept {
  return !text.empty() && std::ranges::all_of(text, kiv::ascii::IsDigit<char>);
}

/// The number of these digits, dots between them passed over, followed by `decimals` filled up to `places` with zeros.
/// Nothing where it does not fit. Counted downwards, because the range is one longer there.
std::optional<std::int64_t> Assemble(bool negative, std::string_view whole, std::string_view decimals, int places) {
  constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
  std::int64_t value = 0;
  const auto append = [&value](char character) {
    const int digit = character - '0';
    if (value < (kLeast + digit) / 10) {
      return false;
    }
    value = value * 10 - digit;
    return true;
  };
  for (const char character : whole) {
    if (character != '.' && !append(character)) {
      return std::nullopt;
    }
  }
  for (std::size_t i = 0; i < static_cast<std::size_t>(places); ++i) {
    if (!append(i < decimals.size() ? decimals[i] : '0')) {
      return std::nullopt;
    }
  }
  if (!negative && value == kLeast) {
    return std::nullopt;
  }
  return negative ? value : -value;
}

bool TakeMinus(std::string_view& text) noexcept {
  const bool negative = text.starts_with('-');
  text.remove_prefix(negative ? 1 : 0);
  return negative;
}

/// Whether the dots stand between groups of three digits, the first of one to three and not beginning with 0.
bool IsGrouped(std::string_view whole) noexcept {
  const std::size_t first = std::min(whole.find('.'), whole.size());
  if (first == 0 || first > 3 || whole.front() == '0' || !AllDigits(whole.substr(0, first))) {
    return false;
  }
  for (std::size_t at = first; at < whole.size(); at += 4) {
    if (whole[at] != '.' || whole.size() - at < 4 || !AllDigits(whole.substr(at + 1, 3))) {
      return false;
    }
  }
  return true;
}

struct SplitNumber {
  std::string_view whole;
  std::string_view decimals;
};

/// Applies the rule of the two notations to the unsigned text.
SplitNumber Split(std::string_view text) {
  const std::size_t comma = text.find(',');
  const std::size_t dot = text.find('.');
  const bool manyDots = dot != std::string_view::npos && text.find('.', dot + 1) != std::string_view::npos;
  SplitNumber split{text, {}};
  bool hasDecimals = true;
  if (comma != std::string_view::npos) {
    split = {text.substr(0, comma), text.substr(comma + 1)};
  } else if (dot != std::string_view::npos && !manyDots) {
    split = {text.substr(0, dot), text.substr(dot + 1)};
    if (split.decimals.size() == 3 && IsGrouped(text)) {
      throw InputError(
          Say({"can be read in two ways: write {0}{1} for the whole number or {0},{1} for decimals",
               "se poate citi în două feluri: scrieți {0}{1} pentru numărul întreg sau {0},{1} pentru zecimale"},
              split.whole, split.decimals));
    }
  } else {
    hasDecimals = false;
  }
  const bool wholeRight = AllDigits(split.whole) || IsGrouped(split.whole);
  if (!wholeRight || (hasDecimals && !AllDigits(split.decimals))) {
    throw InputError(Say({"is not an amount such as 1.234,56 or 1234.56", "nu este o sumă ca 1.234,56 sau 1234.56"}));
  }
  return split;
}

struct Unit {
  std::string_view written;  ///< in small letters
  std::string_view currency;
};
constexpr std::array<Unit, 4> kUnits = {{{"lei", "RON"}, {"leu", "RON"}, {"ron", "RON"}, {"eur", "EUR"}}};

/// Takes the currency off the text's end.
std::string_view TakeCurrency(std::string_view& text) noexcept {
  for (const auto& [written, currency] : kUnits) {
    if (text.size() > written.size() &&
        std::ranges::equal(text.substr(text.size() - written.size()), written, {}, kiv::ascii::ToLower<char>)) {
      text.remove_suffix(written.size());
      return currency;
    }
  }
  return {};
}

}  // namespace

std::int32_t ReadWholeNumber(std::string_view text, std::int32_t least, std::int32_t most, const Phrase& what) {
  std::string_view rest = text;
  const bool negative = TakeMinus(rest);
  const auto number = AllDigits(rest) ? Assemble(negative, rest, {}, 0) : std::nullopt;
  if (!number || *number < least || *number > most) {
    throw InputError(
        Say({"{0} is not {1} from {2} to {3}", "{0} nu este {1} de la {2} la {3}"}, Shown(text), what, least, most));
  }
  return static_cast<std::int32_t>(*number);
}

std::int64_t ReadNumber(std::string_view text, int decimals) {
  text = Trimmed(text);
  const bool negative = TakeMinus(text);
  const SplitNumber split = Split(text);
  if (split.decimals.size() > static_cast<std::size_t>(decimals)) {
    throw InputError(decimals == 0 ? Say({"is not a whole number", "nu este un număr întreg"})
                                   : Say({"has more than {0} decimals", "are mai mult de {0} zecimale"}, decimals));
  }
  const auto number = Assemble(negative, split.whole, split.decimals, 4);
  if (!number) {
    throw InputError(Say({"is outside -922337203685477.5808 to 922337203685477.5807",
                          "nu este între -922337203685477.5808 și 922337203685477.5807"}));
  }
  return *number;
}

Amount ReadAmount(std::string_view text) {
  text = Trimmed(text);
  const std::string_view currency = TakeCurrency(text);
  return {ReadNumber(text), currency};
}

std::int64_t ReadLei(std::string_view text) {
  const Amount amount = ReadAmount(text);
  if (!amount.currency.empty() && amount.currency != "RON") {
    throw InputError(Say({"is in {0}, not in lei", "este în {0}, nu în lei"}, amount.currency));
  }
  return amount.value;
}

std::string WritePlainAmount(std::int64_t amount) {
  constexpr std::uint64_t kUnit = kiv::Currency::kPerUnit;
  // The magnitude in unsigned arithmetic, where the smallest amount has one too.
  const std::uint64_t magnitude =
      amount < 0 ? 0 - static_cast<std::uint64_t>(amount) : static_cast<std::uint64_t>(amount);
  std::string text = (amount < 0 ? "-" : "") + std::to_string(magnitude / kUnit);
  std::string decimals = std::to_string(magnitude % kUnit + kUnit).substr(1);
  decimals.resize(decimals.find_last_not_of('0') + 1);
  return decimals.empty() ? text : text + "." + decimals;
}

}  // namespace kivtools
