#pragma once

#include <cstdint>
#include <optional>

#include "core/Numbers.h"
#include "kivtools/WinUtil/Money.h"

namespace kiv {

/// The plain rule: gather the digits, then convert them; nothing where the text is refused.
inline std::optional<std::int64_t> PlainReadMoney(TextView text) {
  Text whole;
  Text decimals;
  bool comma = false;
  for (const char c : text) {
    if (c == ',') {
      if (comma) {
        return std::nullopt;
      }
      comma = true;
    } else if (c >= '0' && c <= '9') {
      (comma ? decimals : whole).push_back(c);
    } else if (c != '-' && c != ' ' && c != '.') {
      return std::nullopt;
    }
  }
  decimals.resize(4, '0');
  try {
    const std::int64_t raw = ToInt64(whole + decimals);
    return text.starts_with('-') ? -raw : raw;
  } catch (const ConversionError&) {
    return std::nullopt;
  }
}

/// What RoStrToCurrency makes of the text; nothing where it refuses it.
inline std::optional<std::int64_t> ReadMoney(TextView text) {
  try {
    return RoStrToCurrency(text).Raw();
  } catch (const Error&) {
    return std::nullopt;
  }
}

}  // namespace kiv
