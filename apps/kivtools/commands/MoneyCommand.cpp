#include <algorithm>
#include <array>
#include <cstdint>

#include "apps/kivtools/Numbers.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/values/ValueWork.h"

namespace kivtools {
namespace {

constexpr auto kOptions = WithValueOptions<3>({{
    {"decimals",
     "N",
     {"decimals to show, 0 to 4 (2); further ones are cut", "câte zecimale, de la 0 la 4 (2); cele de după se taie"}},
    {"no-space", "", {"no blank after the comma", "fără spațiu după virgulă"}},
    {"parse", "TEXT", {"read a Romanian amount and print it plainly", "citește o sumă românească și o scrie simplu"}},
}});

constexpr Phrase kDetails = {
    "AMOUNT is written 1.234,56, 1234,56 or 1234.56, with at most four decimals and with lei, RON or EUR behind\n"
    "it or not; 1.234 alone could be either number and is refused. TEXT is read as the library reads amounts: a\n"
    "comma before the decimals; dots and blanks are passed over, decimals after the fourth are cut.\n\n"
    "Examples:\n"
    "  kivtools money 1234567.89                  1.234.567, 89\n"
    "  kivtools money --no-space -1234.5          -1.234,50\n"
    "  kivtools money --parse \"1.234,5\"           1234.5\n",
    "AMOUNT se scrie 1.234,56, 1234,56 sau 1234.56, cu cel mult patru zecimale, cu sau fără lei, RON sau EUR în\n"
    "urmă; 1.234 singur poate fi oricare dintre două numere și este refuzat. TEXT se citește cum citește\n"
    "biblioteca sumele: virgulă înaintea zecimalelor; peste puncte și spații se trece, zecimalele de după a patra\n"
    "se taie.\n\n"
    "Exemple:\n"
    "  kivtools money 1234567,89                  1.234.567, 89\n"
    "  kivtools money --no-space -1234,5          -1.234,50\n"
    "  kivtools money --parse \"1.234,5\"           1234.5\n"};

class Money final : public ValueWork {
 public:
  Money(const Library& library, const Arguments& arguments)
      : ValueWork("money"),
        library_(library),
        decimals_(ReadWholeNumber(arguments.ValueOf("decimals").value_or("2"), 0, 4,
                                  {"a number of decimals", "un număr de zecimale"})),
        noSpace_(arguments.Has("no-space")) {}

  bool AppendAnswer(std::string_view value, TextBuffer& out) const override {
    const std::int64_t amount = ReadValue(value, ReadAmount).value;
    out += noSpace_ ? library_.MoneyNoSpace(amount, decimals_) : library_.Money(amount, decimals_);
    return true;
  }

 private:
  const Library& library_;
  std::int32_t decimals_;
  bool noSpace_;
};

std::string Parse(const Library& library, const Arguments& arguments) {
  const auto isGiven = [&](const Option& option) { return option.name != "parse" && arguments.Has(option.name); };
  if (!arguments.Values().empty() || std::ranges::any_of(kOptions, isGiven)) {
    throw InputError(Say({"\"--parse\" goes with nothing but its TEXT", "\"--parse\" merge numai cu TEXT"}));
  }
  return WritePlainAmount(library.ReadMoney(*arguments.ValueOf("parse")));
}

int RunMoney(Session& session, const Arguments& arguments) {
  if (arguments.Has("parse")) {
    session.out.Write(Parse(session.Lib(), arguments) + "\n");
    return kDone;
  }
  return AnswerValues(session, arguments, arguments.Values(), Money(session.Lib(), arguments), {"AMOUNT"});
}

constexpr Command kCommand = {
    "money",
    {"Write an amount with Romanian separators, or read one", "Scrie o sumă cu separatorii românești sau citește una"},
    "AMOUNT ...|-|FILE ...",
    0,
    kAnyNumber,
    kOptions,
    kDetails,
    RunMoney,
    true};

const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
