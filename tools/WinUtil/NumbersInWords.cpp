#include "kivtools/WinUtil/NumbersInWords.h"

#include <array>
#include <cstring>
#include <limits>

#include "core/Numbers.h"

namespace kiv {
namespace {

/// The words of a number below 1000. All have the same size, so that appending one is a copy of fixed length.
struct Words {
  std::array<char, 31> text{};
  std::uint8_t length = 0;

  constexpr void Append(TextView word) {
    for (const char letter : word) {
      text[length++] = letter;
    }
  }
};

constexpr std::array<TextView, 10> kMasculineDigits = {"ZERO",  "UNU",  "DOI",   "TREI", "PATRU",
                                                       "CINCI", "SASE", "SAPTE", "OPT",  "NOUA"};
constexpr std::array<TextView, 10> kFeminineDigits = {"ZERO",  "UNA",  "DOUA",  "TREI", "PATRU",
                                                      "CINCI", "SASE", "SAPTE", "OPT",  "NOUA"};
/// "DOUASPREZECE" serves both genders: sums have always been written so.
constexpr std::array<TextView, 10> kTeens = {
    "ZECE",          "UNSPREZECE",   "DOUASPREZECE",  "TREISPREZECE", "PATRUSPREZECE",
    "CINCISPREZECE", "SASESPREZECE", "SAPTESPREZECE", "OPTSPREZECE",  "NOUASPREZECE",
};
constexpr std::array<TextView, 10> kTens = {
    "", "", "DOUAZECI", "TREIZECI", "PATRUZECI", "CINCIZECI", "SASEZECI", "SAPTEZECI", "OPTZECI", "NOUAZECI",
};
constexpr std::array<TextView, 10> kHundreds = {
    "", "UNASUTA", "DOUASUTE", "TREISUTE", "PATRUSUTE", "CINCISUTE", "SASESUTE", "SAPTESUTE", "OPTSUTE", "NOUASUTE",
};

constexpr void AppendBelowHundred(Words& words, std::size_t value, const std::array<TextView, 10>& digits) {
  if (value < 10) {
    words.Append(digits[value]);
  } else if (value < 20) {
    words.Append(kTeens[value - 10]);
  } else {
    words.Append(kTens[value / 10]);
    if (value % 10 != 0) {
      words.Append("SI");
      words.Append(digits[value % 10]);
    }
  }
}

/// The words of 1 to 999; nothing for 0, so that a missing group appends nothing.
constexpr std::array<Words, 1000> AllGroups(const std::array<TextView, 10>& digits) {
  std::array<Words, 1000> all{};
  for (std::size_t value = 1; value < all.size(); ++value) {
    all[value].Append(kHundreds[value / 100]);
    if (value % 100 != 0) {
      AppendBelowHundred(all[value], value % 100, digits);
    }
  }
  return all;
}

constexpr std::array<Words, 1000> AllThousands() {
  std::array<Words, 1000> all = AllGroups(kFeminineDigits);
  all[1] = {};
  all[1].Append("UNAMIE");
  for (std::size_t value = 2; value < all.size(); ++value) {
    all[value].Append("MII");
  }
  return all;
}

/// The three groups of a number, each ready with the word that follows it, "MILIOANE" apart.
constexpr std::array<Words, 1000> kMillions = AllGroups(kFeminineDigits);
constexpr std::array<Words, 1000> kThousands = AllThousands();
constexpr std::array<Words, 1000> kUnits = AllGroups(kMasculineDigits);

[[noreturn]] void RefuseHundreds(std::int64_t group) {
  Text message = "Numarul ";
  AppendDecimal(message, group);
  throw Error(message + " nu se afla in intervalul 0..999");
}

/// The first group, from the left, that is not in 0..999: the millions of a billion and more, or the first part of a
/// negative number that is not zero.
std::int32_t FirstBadGroup(std::int32_t value) {
  if (const std::int32_t millions = value / 1'000'000; millions != 0) {
    return millions;
  }
  const std::int32_t thousands = value / 1000;
  return thousands != 0 ? thousands : value;
}

/// The words of one result, gathered where there is room for the longest one, so that the Text is allocated once, at
/// its final size.
class Writer {
 public:
  void Append(TextView word) {
    std::memcpy(end_, word.data(), word.size());
    end_ += word.size();
  }

  /// The words of any 32-bit number; throws for the part of it that no group holds.
  void AppendNumber(std::int32_t value) {
    if (static_cast<std::uint32_t>(value) - 1 < 999'999'999) {
      AppendPositive(static_cast<std::uint32_t>(value));
    } else if (value == 0) {
      Append("ZERO");
    } else {
      RefuseHundreds(FirstBadGroup(value));
    }
  }

  /// Lei are never cut to 32 bits as whole numbers are: a wrong sum must not reach a payment order.
  void AppendLei(std::int64_t lei) {
    if (lei < std::numeric_limits<std::int32_t>::min() || lei > std::numeric_limits<std::int32_t>::max()) {
      RefuseHundreds(lei / 1'000'000);
    }
    AppendNumber(static_cast<std::int32_t>(lei));
  }

  Text Result() {
    text_.resize(static_cast<std::size_t>(end_ - text_.data()));
    return std::move(text_);
  }

 private:
  /// 1 to 999999999. No branch depends on the number: a missing group copies nothing of use.
  void AppendPositive(std::uint32_t value) {
    const std::uint32_t millions = value / 1'000'000;
    AppendGroup(kMillions[millions]);
    std::memcpy(end_, "MILIOANE", 8);
    end_ += millions != 0 ? 8 : 0;
    AppendGroup(kThousands[value / 1000 % 1000]);
    AppendGroup(kUnits[value % 1000]);
  }

  void AppendGroup(const Words& words) {
    std::memcpy(end_, words.text.data(), words.text.size());
    end_ += words.length;
  }

  // Four groups (millions, thousands, units, bani) of 31 bytes and the words between them.
  Text text_ = Text(128, char());
  char* end_ = text_.data();
};

struct Split {
  std::int64_t lei;
  std::int32_t bani;
};

Split SplitAmount(Currency amount) {
  return {amount.Raw() / Currency::kPerUnit, static_cast<std::int32_t>(amount.Raw() % Currency::kPerUnit / 100)};
}

}  // namespace

Text InLitere(std::int64_t value) {
  Writer writer;
  writer.AppendNumber(static_cast<std::int32_t>(static_cast<std::uint32_t>(value)));
  return writer.Result();
}

Text InLitere(Currency amount) {
  const auto [lei, bani] = SplitAmount(amount);
  Writer writer;
  writer.AppendLei(lei);
  writer.Append(" LEI");
  if (bani != 0) {
    writer.Append(" SI ");
    writer.AppendNumber(bani);
    writer.Append(" BANI");
  }
  return writer.Result();
}

Text InLitereMF(Currency amount) {
  const auto [lei, bani] = SplitAmount(amount);
  Writer writer;
  if (lei == 1) {
    writer.Append("UNLEU");
  } else {
    writer.AppendLei(lei);
    writer.Append("LEI");
  }
  if (bani < 0) {
    RefuseHundreds(bani);
  }
  if (bani != 0) {
    const std::array<char, 2> digits = {static_cast<char>('0' + bani / 10), static_cast<char>('0' + bani % 10)};
    writer.Append(",");
    writer.Append({digits.data(), digits.size()});
    writer.Append("BANI");
  }
  return writer.Result();
}

}  // namespace kiv
