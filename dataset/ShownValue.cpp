#include <array>
#include <charconv>

#include "core/Numbers.h"
#include "dataset/packet/Unicode.h"
#include "dataset/store/SchemaData.h"
#include "kivtools/Text.h"
#include "kivtools/dataset/Schema.h"

namespace kiv {
namespace {

std::string ShownMoment(FieldType type, DateTime moment) {
  const DateTime::Parts parts = moment.Decode();
  std::string shown;
  if (type != FieldType::Time) {
    AppendPadded(shown, parts.year, 4);
    shown += '-';
    AppendPadded(shown, parts.month, 2);
    shown += '-';
    AppendPadded(shown, parts.day, 2);
  }
  if (type == FieldType::Date) {
    return shown;
  }
  shown += type == FieldType::DateTime ? " " : "";
  AppendPadded(shown, parts.hour, 2);
  shown += ':';
  AppendPadded(shown, parts.minute, 2);
  shown += ':';
  AppendPadded(shown, parts.second, 2);
  if (parts.millisecond != 0) {
    shown += '.';
    AppendPadded(shown, parts.millisecond, 3);
  }
  return shown;
}

std::string ShownAmount(Currency amount) {
  const bool isNegative = amount.Raw() < 0;
  const std::uint64_t raw =
      isNegative ? 0 - static_cast<std::uint64_t>(amount.Raw()) : static_cast<std::uint64_t>(amount.Raw());
  std::string shown = isNegative ? "-" : "";
  AppendDecimal(shown, raw / 10'000);
  shown += '.';
  AppendPadded(shown, raw % 10'000, 4);
  return shown;
}

std::string ShownNumber(double number) {
  std::array<char, 32> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  return {digits.data(), end};
}

std::string ShownGuid(const Guid& guid) {
  const std::array<std::uint64_t, 2> halves = {
      std::uint64_t{guid.data1} << 32U | std::uint64_t{guid.data2} << 16U | guid.data3, [&] {
        std::uint64_t half = 0;
        for (const std::uint8_t byte : guid.data4) {
          half = half << 8U | byte;
        }
        return half;
      }()};
  constexpr TextView kDigits = "0123456789ABCDEF";
  std::string shown = "{";
  for (unsigned i = 0; i < 32; ++i) {
    shown += i == 8 || i == 12 || i == 16 || i == 20 ? "-" : "";
    shown += kDigits[halves[i / 16] >> (60 - 4 * (i % 16)) & 15U];
  }
  return shown + "}";
}

}  // namespace

std::string ShownValue(FieldType type, const ValueView& value) {
  return std::visit(
      [type]<class Held>(const Held& held) -> std::string {
        std::string shown;
        if constexpr (std::is_same_v<Held, bool>) {
          shown = held ? "true" : "false";
        } else if constexpr (std::is_same_v<Held, std::int64_t>) {
          AppendDecimal(shown, held);
        } else if constexpr (std::is_same_v<Held, double>) {
          shown = ShownNumber(held);
        } else if constexpr (std::is_same_v<Held, Currency>) {
          shown = ShownAmount(held);
        } else if constexpr (std::is_same_v<Held, DateTime>) {
          shown = ShownMoment(type, held);
        } else if constexpr (std::is_same_v<Held, TextView>) {
          shown = ToUtf8(held, DiacriticForm::CommaBelow);
        } else if constexpr (std::is_same_v<Held, std::u16string_view>) {
          AppendUtf8(shown, held);
        } else if constexpr (std::is_same_v<Held, Guid>) {
          shown = ShownGuid(held);
        } else if constexpr (std::is_same_v<Held, BytesView>) {
          AppendDecimal(shown, held.size());
          shown += held.size() == 1 ? " byte" : " bytes";
        }
        return shown;
      },
      value.Get());
}

}  // namespace kiv
