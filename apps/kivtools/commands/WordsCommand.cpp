#include <array>
#include <cstdint>
#include <limits>

#include "apps/kivtools/Numbers.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/values/ValueWork.h"
#include "kivtools/Currency.h"

namespace kivtools {
namespace {

constexpr auto kOptions = WithValueOptions<2>({{
    {"compact", "", "the compact form: the bani in digits, no blanks"},
    {"number", "", "AMOUNT is a whole number, not money"},
}});

constexpr std::string_view kDetails =
    "AMOUNT is written 1.234,56, 1234,56 or 1234.56, with at most four decimals and with lei or RON behind it or not;\n"
    "1.234 alone could be either number and is refused. What is below a ban is cut.\n"
    "Amounts of a billion or more and negative ones have no words.\n\n"
    "Examples:\n"
    "  kivtools words 1234.56           UNAMIEDOUASUTETREIZECISIPATRU LEI SI CINCIZECISISASE BANI\n"
    "  kivtools words --compact 1.05    UNLEU,05BANI\n"
    "  kivtools words --number 21       DOUAZECISIUNU\n"
    "  kivtools words --csv total --add in_litere facturi.csv > facturi-litere.csv\n";

class Words final : public ValueWork {
 public:
  Words(const Library& library, const Arguments& arguments)
      : ValueWork("words"), library_(library), number_(arguments.Has("number")), compact_(arguments.Has("compact")) {}

  bool AppendAnswer(std::string_view value, TextBuffer& out) const override {
    try {
      out += Of(value);
      return true;
    } catch (const LibraryError& error) {
      throw InputError(Shown(value) + ": " + error.what());  // the library names only the group of digits it refused
    } catch (const InputError& error) {
      throw InputError(Shown(value) + " " + error.what());
    }
  }

 private:
  [[nodiscard]] std::string Of(std::string_view value) const {
    if (number_) {
      return library_.NumberInWords(ReadInt32(value));
    }
    const std::int64_t amount = ReadLei(value);
    return compact_ ? library_.SumInWordsCompact(amount) : library_.SumInWords(amount);
  }

  /// The library would drop the upper bits of a larger number and give the words of another one.
  static std::int32_t ReadInt32(std::string_view value) {
    using Limits = std::numeric_limits<std::int32_t>;
    const std::int64_t number = ReadNumber(value, 0) / kiv::Currency::kPerUnit;
    if (number < Limits::min() || number > Limits::max()) {
      throw InputError("is not a whole number from -2147483648 to 2147483647");
    }
    return static_cast<std::int32_t>(number);
  }

  const Library& library_;
  bool number_;
  bool compact_;
};

int RunWords(Session& session, const Arguments& arguments) {
  if (arguments.Has("number") && arguments.Has("compact")) {
    throw InputError("\"--compact\" is for money and does not go with --number");
  }
  return AnswerValues(session, arguments, arguments.Values(), Words(session.Lib(), arguments), {"AMOUNT"});
}

constexpr Command kCommand = {
    "words", "Write an amount in words", "AMOUNT ...|-|FILE ...", 0, kAnyNumber, kOptions, kDetails, RunWords, true};

const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
