#include <array>
#include <cstdint>

#include "apps/kivtools/Command.h"
#include "apps/kivtools/Numbers.h"
#include "apps/kivtools/Shown.h"

namespace kivtools {
namespace {

constexpr std::array<Option, 3> kOptions = {{
    {"decimals", "N", "decimals to show, 0 to 4 (2); further ones are cut"},
    {"no-space", "", "no blank after the comma"},
    {"parse", "TEXT", "read a Romanian amount and print it plainly"},
}};

constexpr std::string_view kDetails =
    "AMOUNT is written 1.234,56, 1234,56 or 1234.56, with at most four decimals and with lei, RON or EUR behind it or\n"
    "not; 1.234 alone could be either number and is refused. TEXT is read as the library reads amounts: a comma "
    "before\n"
    "the decimals; dots and blanks are passed over, decimals after the fourth are cut.\n\n"
    "Examples:\n"
    "  kivtools money 1234567.89                  1.234.567, 89\n"
    "  kivtools money --no-space -1234.5          -1.234,50\n"
    "  kivtools money --parse \"1.234,5\"           1234.5\n";

std::string Format(const Library& library, const Arguments& arguments) {
  const std::int64_t amount = ReadValue(arguments.Values().front(), ReadAmount).value;
  const std::int32_t decimals =
      ReadWholeNumber(arguments.ValueOf("decimals").value_or("2"), 0, 4, "a number of decimals");
  return arguments.Has("no-space") ? library.MoneyNoSpace(amount, decimals) : library.Money(amount, decimals);
}

std::string Parse(const Library& library, const Arguments& arguments) {
  if (!arguments.Values().empty() || arguments.Has("decimals") || arguments.Has("no-space")) {
    throw InputError("\"--parse\" goes with nothing but its TEXT");
  }
  return WritePlainAmount(library.ReadMoney(*arguments.ValueOf("parse")));
}

int RunMoney(Session& session, const Arguments& arguments) {
  if (!arguments.Has("parse") && arguments.Values().empty()) {
    throw InputError("AMOUNT is missing");
  }
  session.out.Write((arguments.Has("parse") ? Parse : Format)(session.Lib(), arguments) + "\n");
  return kDone;
}

constexpr Command kCommand = {
    "money", "Write an amount with Romanian separators, or read one", "AMOUNT", 0, 1, kOptions, kDetails, RunMoney};

const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
