#include "kivtools/WinUtil/NumbersInWords.h"

#include <array>
#include <cstring>
#include <limits>

#include "core/Numbers.h"

namespace kiv {
namespace {

enum class Gender : std::uint8_t { Masculine, Feminine };

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

constexpr std::array<Words, 1000> AllBelowThousand(const std::array<TextView, 10>& digits) {
  std::array<Words, 1000> all{};
  for (std::size_t value = 0; value < all.size(); ++value) {
    all[value].Append(kHundreds[value / 100]);
    if (value < 100 || value % 100 != 0) {
      AppendBelowHundred(all[value], value % 100, digits);
    }
  }
  return all;
}

constexpr std::array<Words, 1000> kMasculine = AllBelowThousand(kMasculineDigits);
constexpr std::array<Words, 1000> kFeminine = AllBelowThousand(kFeminineDigits);

[[noreturn]] void Refuse(std::int64_t value, TextView reason) {
  Text message = "Numarul ";
  AppendDecimal(message, value);
  throw Error(message.append(reason));
}

[[noreturn]] void RefuseHundreds(std::int64_t value) {
  Refuse(value, " nu se afla in intervalul 0..999");
}

/// The words of one result, gathered where there is room for the longest one, so that the Text is allocated once, at
/// its final size.
class Writer {
 public:
  void Append(TextView word) {
    std::memcpy(end_, word.data(), word.size());
    end_ += word.size();
  }

  void AppendHundreds(std::int32_t value, Gender gender) {
    // The unsigned comparison refuses negative values too.
    if (static_cast<std::uint32_t>(value) > 999) {
      RefuseHundreds(value);
    }
    const auto index = static_cast<std::size_t>(value);
    const Words& words = gender == Gender::Masculine ? kMasculine[index] : kFeminine[index];
    std::memcpy(end_, words.text.data(), words.text.size());
    end_ += words.length;
  }

  void AppendThousands(std::int32_t value) {
    const std::int32_t thousands = value / 1000;
    const std::int32_t rest = value % 1000;
    if (thousands > 999) {
      Refuse(value, " nu este in intervalul 0..999999");
    }
    if (thousands == 0) {
      AppendHundreds(rest, Gender::Masculine);
      return;
    }
    if (thousands == 1) {
      Append("UNAMIE");
    } else {
      AppendHundreds(thousands, Gender::Feminine);
      Append("MII");
    }
    if (rest != 0) {
      AppendHundreds(rest, Gender::Masculine);
    }
  }

  void AppendMillions(std::int32_t value) {
    const std::int32_t millions = value / 1'000'000;
    const std::int32_t rest = value % 1'000'000;
    if (millions == 0) {
      AppendThousands(rest);
      return;
    }
    // A billion and more is refused here, by its count of millions.
    AppendHundreds(millions, Gender::Feminine);
    Append("MILIOANE");
    if (rest != 0) {
      AppendThousands(rest);
    }
  }

  /// Lei are never cut to 32 bits as whole numbers are: a wrong sum must not reach a payment order.
  void AppendLei(std::int64_t lei) {
    if (lei < std::numeric_limits<std::int32_t>::min() || lei > std::numeric_limits<std::int32_t>::max()) {
      RefuseHundreds(lei / 1'000'000);
    }
    AppendMillions(static_cast<std::int32_t>(lei));
  }

  [[nodiscard]] Text Result() const { return Text(buffer_.data(), static_cast<std::size_t>(end_ - buffer_.data())); }

 private:
  // Four groups (millions, thousands, units, bani) of 31 bytes and the words between them.
  std::array<char, 192> buffer_;
  char* end_ = buffer_.data();
};

struct Split {
  std::int64_t lei;
  std::int32_t bani;
};

Split SplitAmount(Currency amount) {
  return {amount.Raw() / 10'000, static_cast<std::int32_t>(amount.Raw() % 10'000 / 100)};
}

}  // namespace

Text InLitere(std::int64_t value) {
  Writer writer;
  writer.AppendMillions(static_cast<std::int32_t>(static_cast<std::uint32_t>(value)));
  return writer.Result();
}

Text InLitere(Currency amount) {
  const auto [lei, bani] = SplitAmount(amount);
  Writer writer;
  writer.AppendLei(lei);
  writer.Append(" LEI");
  if (bani != 0) {
    writer.Append(" SI ");
    writer.AppendMillions(bani);
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
