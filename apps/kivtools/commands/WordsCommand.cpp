#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <tuple>

#include "apps/kivtools/Numbers.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/values/ValueWork.h"
#include "kivtools/Currency.h"

namespace kivtools {
namespace {

constexpr auto kOptions = WithValueOptions<4>({{
    {"compact", "", {"the compact form: the bani in digits, no blanks", "forma compactă: banii în cifre, fără spații"}},
    {"number", "", {"AMOUNT is a whole number, not money", "AMOUNT este un număr întreg, nu bani"}},
    {"readable",
     "",
     {"as people read it: with diacritics and blanks, of any size, EUR too",
      "cum se citește: cu diacritice și spații, de orice mărime, și în EUR"}},
    {"currency",
     "CODE",
     {"with --readable: RON, EUR, USD or six fields as \"leu,lei,m,ban,bani,m\"",
      "cu --readable: RON, EUR, USD sau șase câmpuri ca \"leu,lei,m,ban,bani,m\""}},
}});

constexpr Phrase kDetails = {
    "AMOUNT is written 1.234,56, 1234,56 or 1234.56, with at most four decimals and with lei or RON behind it or\n"
    "not; 1.234 alone could be either number and is refused. What is below a ban is cut.\n"
    "Amounts of a billion or more and negative ones have words with --readable only. The six fields of a currency\n"
    "are singular, plural and gender (m, f or n) of its unit and of its hundredth.\n\n"
    "Examples:\n"
    "  kivtools words 1234.56           UNAMIEDOUASUTETREIZECISIPATRU LEI SI CINCIZECISISASE BANI\n"
    "  kivtools words --compact 1.05    UNLEU,05BANI\n"
    "  kivtools words --number 21       DOUAZECISIUNU\n"
    "  kivtools words --readable 2304.50 două mii trei sute patru lei și cincizeci de bani\n"
    "  kivtools words --readable --currency EUR -21\n"
    "  kivtools words --csv total --add in_litere facturi.csv > facturi-litere.csv\n",
    "AMOUNT se scrie 1.234,56, 1234,56 sau 1234.56, cu cel mult patru zecimale, cu sau fără lei ori RON în urmă;\n"
    "1.234 singur poate fi oricare dintre două numere și este refuzat. Ce este sub un ban se taie.\n"
    "Sumele de la un miliard în sus și cele negative au cuvinte numai cu --readable. Cele șase câmpuri ale unei\n"
    "monede sunt singularul, pluralul și genul (m, f sau n) unității și al sutimii ei.\n\n"
    "Exemple:\n"
    "  kivtools words 1234,56           UNAMIEDOUASUTETREIZECISIPATRU LEI SI CINCIZECISISASE BANI\n"
    "  kivtools words --compact 1,05    UNLEU,05BANI\n"
    "  kivtools words --number 21       DOUAZECISIUNU\n"
    "  kivtools words --readable 2304,50 două mii trei sute patru lei și cincizeci de bani\n"
    "  kivtools words --readable --currency EUR -21\n"
    "  kivtools words --csv total --add in_litere facturi.csv > facturi-litere.csv\n"};

class Words final : public ValueWork {
 public:
  Words(const Library& library, const Arguments& arguments)
      : ValueWork("words"),
        library_(library),
        number_(arguments.Has("number")),
        compact_(arguments.Has("compact")),
        readable_(arguments.Has("readable")),
        currency_(arguments.ValueOf("currency")) {}

  bool AppendAnswer(std::string_view value, TextBuffer& out) const override {
    try {
      AppendWords(value, out);
      return true;
    } catch (const LibraryError& error) {
      throw InputError(
          AsItIs(Shown(value) + ": " + error.what()));  // the library names only the group of digits it refused
    } catch (const InputError& error) {
      throw InputError(AsItIs(Shown(value) + " " + error.what()));
    }
  }

 private:
  void AppendWords(std::string_view value, TextBuffer& out) const {
    if (readable_) {
      out += number_ ? library_.NumberInReadableWords(ReadNumber(value, 0) / kiv::Currency::kPerUnit)
                     : Readable(ReadAmount(value));
    } else if (number_) {
      out += library_.NumberInWords(ReadInt32(value));
    } else if (compact_) {
      out += library_.SumInWordsCompact(ReadLei(value));
    } else {
      library_.AppendSumInWords(ReadLei(value), out);
    }
  }

  [[nodiscard]] std::string Readable(const Amount& amount) const {
    if (currency_ && !amount.currency.empty() && amount.currency != *currency_) {
      throw InputError(Say({"is in {0}, not in {1}", "este în {0}, nu în {1}"}, amount.currency, *currency_));
    }
    const std::string_view own = amount.currency.empty() ? "RON" : amount.currency;
    return library_.SumInReadableWords(amount.value, currency_ ? std::string_view(*currency_) : own);
  }

  /// The library would drop the upper bits of a larger number and give the words of another one.
  static std::int32_t ReadInt32(std::string_view value) {
    using Limits = std::numeric_limits<std::int32_t>;
    const std::int64_t number = ReadNumber(value, 0) / kiv::Currency::kPerUnit;
    if (number < Limits::min() || number > Limits::max()) {
      throw InputError(Say({"is not a whole number from -2147483648 to 2147483647",
                            "nu este un număr întreg de la -2147483648 la 2147483647"}));
    }
    return static_cast<std::int32_t>(number);
  }

  const Library& library_;
  bool number_;
  bool compact_;
  bool readable_;
  std::optional<std::string> currency_;
};

int RunWords(Session& session, const Arguments& arguments) {
  if (arguments.Has("number") && arguments.Has("compact")) {
    throw InputError(Say({"\"--compact\" is for money and does not go with --number",
                          "\"--compact\" este pentru bani și nu merge cu --number"}));
  }
  if (arguments.Has("readable") && arguments.Has("compact")) {
    throw InputError(Say({"\"--readable\" and \"--compact\" are two forms",
                          "\"--readable\" și \"--compact\" sunt două forme diferite"}));
  }
  const std::optional<std::string> currency = arguments.ValueOf("currency");
  if (currency && (!arguments.Has("readable") || arguments.Has("number"))) {
    throw InputError(
        Say({"\"--currency\" goes with --readable, for money", "\"--currency\" merge cu --readable, pentru bani"}));
  }
  if (currency) {
    std::ignore = session.Lib().SumInReadableWords(0, *currency);  // refuses one that is none
  }
  return AnswerValues(session, arguments, arguments.Values(), Words(session.Lib(), arguments), {"AMOUNT"});
}

constexpr Command kCommand = {"words",
                              {"Write an amount in words", "Scrie o sumă în litere"},
                              "AMOUNT ...|-|FILE ...",
                              0,
                              kAnyNumber,
                              kOptions,
                              kDetails,
                              RunWords,
                              true};

const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
