#include <array>
#include <cstdint>
#include <limits>

#include "apps/kivtools/Command.h"
#include "apps/kivtools/Numbers.h"
#include "apps/kivtools/Shown.h"
#include "kivtools/Currency.h"

namespace kivtools {
namespace {

constexpr std::array<Option, 2> kOptions = {{
    {"compact", "", "the compact form: the bani in digits, no blanks"},
    {"number", "", "AMOUNT is a whole number, not money"},
}};

constexpr std::string_view kDetails =
    "AMOUNT is written 1.234,56, 1234,56 or 1234.56, with at most four decimals and with lei or RON behind it or not;\n"
    "1.234 alone could be either number and is refused. What is below a ban is cut.\n"
    "Amounts of a billion or more and negative ones have no words.\n\n"
    "Examples:\n"
    "  kivtools words 1234.56           UNAMIEDOUASUTETREIZECISIPATRU LEI SI CINCIZECISISASE BANI\n"
    "  kivtools words --compact 1.05    UNLEU,05BANI\n"
    "  kivtools words --number 21       DOUAZECISIUNU\n";

std::string Words(const Library& library, const Arguments& arguments) {
  const std::string& text = arguments.Values().front();
  try {
    if (arguments.Has("number")) {
      // The library would drop the upper bits of a larger one and give the words of another number.
      using Limits = std::numeric_limits<std::int32_t>;
      const std::int64_t number = ReadNumber(text, 0) / kiv::Currency::kPerUnit;
      if (number < Limits::min() || number > Limits::max()) {
        throw InputError("is not a whole number from -2147483648 to 2147483647");
      }
      return library.NumberInWords(static_cast<std::int32_t>(number));
    }
    const std::int64_t amount = ReadLei(text);
    return arguments.Has("compact") ? library.SumInWordsCompact(amount) : library.SumInWords(amount);
  } catch (const LibraryError& error) {
    throw InputError(Shown(text) + ": " + error.what());  // the library names only the group of digits it refused
  } catch (const InputError& error) {
    throw InputError(Shown(text) + " " + error.what());
  }
}

int RunWords(Session& session, const Arguments& arguments) {
  if (arguments.Has("number") && arguments.Has("compact")) {
    throw InputError("\"--compact\" is for money and does not go with --number");
  }
  session.out.Write(Words(session.Lib(), arguments) + "\n");
  return kDone;
}

constexpr Command kCommand = {"words", "Write an amount in words", "AMOUNT", 1, 1, kOptions, kDetails, RunWords};

const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
