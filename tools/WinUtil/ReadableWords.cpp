#include "kivtools/WinUtil/ReadableWords.h"

#include <algorithm>
#include <array>
#include <utility>

namespace kiv {
namespace {

using namespace literals;

constexpr std::array<TextView, 20> kBelowTwenty = {
    "zero"_ro,          "unu"_ro,          "doi"_ro,           "trei"_ro,         "patru"_ro,
    "cinci"_ro,         "şase"_ro,         "şapte"_ro,         "opt"_ro,          "nouă"_ro,
    "zece"_ro,          "unsprezece"_ro,   "doisprezece"_ro,   "treisprezece"_ro, "patrusprezece"_ro,
    "cincisprezece"_ro, "şasesprezece"_ro, "şaptesprezece"_ro, "optsprezece"_ro,  "nouăsprezece"_ro,
};
constexpr std::array<TextView, 10> kTens = {
    "",
    "",
    "douăzeci"_ro,
    "treizeci"_ro,
    "patruzeci"_ro,
    "cincizeci"_ro,
    "şasezeci"_ro,
    "şaptezeci"_ro,
    "optzeci"_ro,
    "nouăzeci"_ro,
};

/// A thousand of anything smaller.
struct Scale {
  std::uint64_t size;
  CountedNoun noun;
};
constexpr std::array<Scale, 6> kScales = {{
    {1'000'000'000'000'000'000, {"trilion", "trilioane", GrammaticalGender::Neuter}},
    {1'000'000'000'000'000, {"biliard", "biliarde", GrammaticalGender::Neuter}},
    {1'000'000'000'000, {"bilion", "bilioane", GrammaticalGender::Neuter}},
    {1'000'000'000, {"miliard", "miliarde", GrammaticalGender::Neuter}},
    {1'000'000, {"milion", "milioane", GrammaticalGender::Neuter}},
    {1'000, {"mie", "mii", GrammaticalGender::Feminine}},
}};

/// The few numbers that have a gender.
TextView BelowTwenty(std::size_t number, GrammaticalGender gender) {
  if (number == 1 && gender == GrammaticalGender::Feminine) {
    return "una";
  }
  if (gender != GrammaticalGender::Masculine) {
    if (number == 2) {
      return "două"_ro;
    }
    if (number == 12) {
      return "douăsprezece"_ro;
    }
  }
  return kBelowTwenty[number];
}

constexpr bool WantsDe(std::uint64_t number) {
  return number >= 20 && (number % 100 == 0 || number % 100 >= 20);
}

constexpr std::uint64_t Magnitude(std::int64_t number) {
  return number < 0 ? 0 - static_cast<std::uint64_t>(number) : static_cast<std::uint64_t>(number);
}

/// Writes words with a blank between each two.
class Speaker {
 public:
  explicit Speaker(bool negative) {
    text_.reserve(256);  // room for the longest sum
    if (negative) {
      Say("minus");
    }
  }

  void Say(TextView word) {
    if (!text_.empty()) {
      text_ += ' ';
    }
    text_ += word;
  }

  void SayNumber(std::uint64_t number, GrammaticalGender gender) {
    if (number == 0) {
      Say(kBelowTwenty[0]);
    }
    for (const Scale& scale : kScales) {
      if (const std::uint64_t count = number / scale.size; count > 0) {
        SayCounted(count, scale.noun);
        number %= scale.size;
      }
    }
    SayBelowThousand(static_cast<std::size_t>(number), gender);
  }

  void SayCounted(std::uint64_t number, const CountedNoun& noun) {
    const TextView form = number == 1 ? noun.singular : noun.plural;
    if (form.empty()) {
      throw Error("InCuvinte: numele a ceea ce se numara lipseste");
    }
    if (number == 1) {
      Say(noun.gender == GrammaticalGender::Feminine ? "una" : "un");
    } else {
      SayNumber(number, noun.gender);
    }
    if (WantsDe(number)) {
      Say("de");
    }
    Say(form);
  }

  Text Result() { return std::move(text_); }

 private:
  /// Nothing for 0.
  void SayBelowThousand(std::size_t number, GrammaticalGender gender) {
    if (const std::size_t hundreds = number / 100; hundreds > 0) {
      Say(BelowTwenty(hundreds, GrammaticalGender::Feminine));
      Say(hundreds == 1 ? "sută"_ro : "sute"_ro);
    }
    const std::size_t rest = number % 100;
    if (rest >= 20) {
      Say(kTens[rest / 10]);
    }
    if (const std::size_t last = rest < 20 ? rest : rest % 10; last > 0) {
      if (rest > 20) {
        Say("şi"_ro);
      }
      Say(BelowTwenty(last, gender));
    }
  }

  Text text_;
};

GrammaticalGender GenderOf(TextView field, TextView text) {
  constexpr TextView kLetters = "mfn";
  const std::size_t at = field.size() == 1 ? kLetters.find(field.front()) : TextView::npos;
  if (at == TextView::npos) {
    throw Error("CurrencyNamesOf: \"" + Text(field) + "\" din \"" + Text(text) + "\" nu este genul m, f sau n");
  }
  return static_cast<GrammaticalGender>(at);
}

}  // namespace

CurrencyNames CurrencyNamesOf(TextView text) {
  constexpr std::array<std::pair<TextView, CurrencyNames>, 3> kKnown = {
      {{"RON", kLei}, {"EUR", kEuro}, {"USD", kDolari}}};
  if (const auto* const known = std::ranges::find(kKnown, text, &std::pair<TextView, CurrencyNames>::first);
      known != kKnown.end()) {
    return known->second;
  }
  std::array<TextView, 6> fields;
  TextView rest = text;
  for (TextView& field : fields) {
    const bool last = &field == &fields.back();
    const std::size_t end = last ? rest.size() : std::min(rest.find(','), rest.size());
    field = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  // A field too few is empty, and one too many makes the last one's gender unknown.
  const bool complete = std::ranges::none_of(fields, &TextView::empty);
  if (!complete) {
    throw Error("CurrencyNamesOf: \"" + Text(text) +
                "\" nu este RON, EUR, USD sau o moneda ca \"leu,lei,m,ban,bani,m\"");
  }
  return {{fields[0], fields[1], GenderOf(fields[2], text)}, {fields[3], fields[4], GenderOf(fields[5], text)}};
}

Text InCuvinte(std::int64_t number, GrammaticalGender gender) {
  Speaker speaker(number < 0);
  speaker.SayNumber(Magnitude(number), gender);
  return speaker.Result();
}

Text InCuvinte(std::int64_t number, const CountedNoun& noun) {
  Speaker speaker(number < 0);
  speaker.SayCounted(Magnitude(number), noun);
  return speaker.Result();
}

Text InCuvinte(Currency amount, const CurrencyNames& currency) {
  constexpr std::uint64_t kRawPerHundredth = Currency::kPerUnit / 100;
  const std::uint64_t hundredths = Magnitude(amount.Raw()) / kRawPerHundredth;
  const std::uint64_t units = hundredths / 100;
  const std::uint64_t rest = hundredths % 100;
  Speaker speaker(amount.Raw() < 0 && hundredths != 0);
  if (units != 0 || rest == 0) {
    speaker.SayCounted(units, currency.unit);
  }
  if (units != 0 && rest != 0) {
    speaker.Say("şi"_ro);
  }
  if (rest != 0) {
    speaker.SayCounted(rest, currency.hundredth);
  }
  return speaker.Result();
}

}  // namespace kiv
