#include <cstdint>
#include <string>
#include <string_view>

#include "apps/kivtools/CodePages.h"
#include "apps/kivtools/Codes.h"
#include "apps/kivtools/Dates.h"
#include "apps/kivtools/InputError.h"
#include "apps/kivtools/Numbers.h"
#include "fuzz/Property.h"

namespace {

using namespace kivtools;

/// Whether the text is accepted; what it is read as is then given to `use`.
template <class Read, class Use>
bool Accepts(std::string_view text, const Read& read, const Use& use) {
  try {
    use(read(text));
    return true;
  } catch (const InputError&) {
    return false;
  }
}

void CheckNumber(std::string_view text) {
  const bool isNumber = Accepts(
      text, [](auto given) { return ReadNumber(given); },
      [text](std::int64_t number) {
        std::string again = WritePlainAmount(number);
        again.replace(std::min(again.find('.'), again.size()), again.find('.') == std::string::npos ? 0 : 1, ",");
        again += again.ends_with(',') ? "0" : "";
        REQUIRE(ReadNumber(again) == number);
        REQUIRE((ReadAmount(std::string(text) + " EUR") == Amount{number, "EUR"}));
        REQUIRE(ReadLei(text) == number);
      });
  // Fewer decimals only refuse more, and nothing is read as another number.
  const bool isWhole = Accepts(
      text, [](auto given) { return ReadNumber(given, 0); },
      [text](std::int64_t number) { REQUIRE(ReadNumber(text) == number); });
  REQUIRE(isNumber || !isWhole);
}

void CheckDate(std::string_view text) {
  const auto same = [](const Moment& a, const Moment& b) {
    return a.year == b.year && a.month == b.month && a.day == b.day;
  };
  Accepts(text, ReadDate, [&](const Moment& date) {
    const std::string dotted =
        std::to_string(date.day) + "." + std::to_string(date.month) + "." + std::to_string(date.year + 10000).substr(1);
    REQUIRE(same(ReadDate(dotted), date));
    REQUIRE(same(ReadMoment(text), date));
    REQUIRE(ReadMoment(std::string(text) + " 23:59:58").second == 58);
  });
}

void CheckCode(std::string_view text) {
  const std::string plain = WithoutGaps(text);
  REQUIRE(plain.size() <= text.size());
  REQUIRE(plain.find(' ') == std::string::npos);
  REQUIRE(WithoutGaps(plain).size() <= plain.size());
  const auto never = [](std::string_view) { return false; };
  REQUIRE(!SaysYes(never, text, true));
  REQUIRE(SaysYes([&plain](std::string_view asked) { return asked == plain; }, text, false));
}

}  // namespace

// Whatever is accepted reads back as what it was read as, and nothing else is thrown than InputError.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  CheckNumber(text);
  CheckDate(text);
  CheckCode(text);
  Accepts(text, ReadCodePage, [](std::int32_t page) { REQUIRE(page >= 0 && page <= 65535); });
  return 0;
}
