#include <array>
#include <charconv>

#include "core/Numbers.h"
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

void AppendUtf8(std::string& shown, char32_t character) {
  const auto follow = [&](unsigned shift) { shown += static_cast<char>(0x80U | (character >> shift & 0x3FU)); };
  if (character < 0x80) {
    shown += static_cast<char>(character);
  } else if (character < 0x800) {
    shown += static_cast<char>(0xC0U | character >> 6U);
    follow(0);
  } else if (character < 0x10000) {
    shown += static_cast<char>(0xE0U | character >> 12U);
    follow(6);
    follow(0);
  } else {
    shown += static_cast<char>(0xF0U | character >> 18U);
    follow(12);
    follow(6);
    follow(0);
  }
}

/// Pairs are whole: a field holds no others.
std::string ShownWide(std::u16string_view wide) {
  std::string shown;
  for (std::size_t i = 0; i < wide.size(); ++i) {
    char32_t character = wide[i];
    if ((character & 0xFC00U) == 0xD800U && i + 1 < wide.size()) {
      character = 0x10000U + ((character & 0x3FFU) << 10U) + (char32_t{wide[++i]} & 0x3FFU);
    }
    AppendUtf8(shown, character);
  }
  return shown;
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
          shown = ShownWide(held);
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
