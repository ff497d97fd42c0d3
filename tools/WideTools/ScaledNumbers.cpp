#include "kivtools/WideTools/ScaledNumbers.h"

#include <array>

#include "core/GroupedDigits.h"
#include "core/Numbers.h"
#include "kivtools/Currency.h"

namespace kiv {
namespace {

Text Plain(std::uint64_t value) {
  Text text;
  AppendDecimal(text, value);
  return text;
}

Text Grouped(std::uint64_t value) {
  std::array<char, kGroupedRoom> buffer;
  char* const end = buffer.data() + buffer.size();
  return {WriteGroupedBefore(end, value), end};
}

Text WithDecimals(Text whole, std::uint64_t decimals, std::size_t width) {
  whole.push_back(',');
  AppendPadded(whole, decimals, width);
  return whole;
}

Text GroupedHundredths(std::uint64_t value) {
  return WithDecimals(Grouped(value / 100), value % 100, 2);
}

/// Two decimals where they are exact, else four.
Text ShortestTenThousandths(std::uint64_t value) {
  return value % 100 == 0 ? GroupedHundredths(value / 100)
                          : WithDecimals(Grouped(value / Currency::kPerUnit), value % Currency::kPerUnit, 4);
}

Text WriteMagnitude(std::uint64_t value, std::int32_t kind) {
  switch (kind) {
    case 0:
      return Grouped(value);
    case 2:
      return WithDecimals(Plain(value / 100), value % 100, 2);
    case 22:
      return GroupedHundredths(value);
    case 42:
      return GroupedHundredths(value / 100 + (value % 100 >= 50 ? 1 : 0));
    case 4:
    case 422:
      return ShortestTenThousandths(value);
    case 3:
      return "[" + Plain(value) + "]";
    default:
      throw Error("Nu cunosc tipul de date (" + std::to_string(kind) + ")(" + Plain(value) + ")");
  }
}

}  // namespace

Text ScrieFoarteFrumos(std::int64_t value, std::int32_t kind) {
  const auto bits = static_cast<std::uint64_t>(value);
  return value < 0 ? "-" + WriteMagnitude(0 - bits, kind) : WriteMagnitude(bits, kind);
}

}  // namespace kiv
