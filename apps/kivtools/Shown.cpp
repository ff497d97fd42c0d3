#include "apps/kivtools/Shown.h"

#include "kivtools/Utf8.h"

namespace kivtools {
namespace {

/// Characters that a terminal acts on: the C0 and C1 controls, and those that turn the direction of writing.
constexpr bool IsControl(char32_t character) noexcept {
  return character < 0x20 || (character >= 0x7F && character < 0xA0) || (character >= 0x200E && character <= 0x200F) ||
         (character >= 0x2028 && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069);
}

void AppendEscaped(std::string& out, std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    out.append("\\x").append(1, kDigits[value >> 4U]).append(1, kDigits[value & 15U]);
  }
}

}  // namespace

std::string Shown(std::string_view value, std::size_t most) {
  std::string shown = "\"";
  for (std::size_t at = 0; at < value.size();) {
    if (at >= most) {
      shown += "...";
      break;
    }
    const kiv::utf8::Decoded decoded = kiv::utf8::DecodeAt(value, at);
    const std::string_view bytes = value.substr(at, decoded.length == 0 ? 1 : decoded.length);
    if (decoded.length == 0 || IsControl(decoded.character)) {
      AppendEscaped(shown, bytes);
    } else {
      shown += bytes;
    }
    at += bytes.size();
  }
  return shown += '"';
}

std::string ShownName(std::string_view name) {
  return WhyNotPrintable(name) == nullptr ? std::string(name) : Shown(name);
}

const Phrase* WhyNotPrintable(std::string_view text, bool lines) {
  static constexpr Phrase kNotUtf8 = {"is not UTF-8", "nu este UTF-8"};
  static constexpr Phrase kControl = {"has a control character", "are un caracter de control"};
  for (std::size_t at = 0; at < text.size();) {
    const kiv::utf8::Decoded decoded = kiv::utf8::DecodeAt(text, at);
    if (decoded.length == 0) {
      return &kNotUtf8;
    }
    if (IsControl(decoded.character) && !(lines && decoded.character == U'\n')) {
      return &kControl;
    }
    at += decoded.length;
  }
  return nullptr;
}

Said AtLine(const std::string& shownName, std::uint64_t line, std::string_view fault) {
  return AsItIs(shownName + ":" + std::to_string(line) + ": " + std::string(fault));
}

Said IsMissing(std::string_view what) {
  return Say({"{0} is missing", "lipsește {0}"}, what);
}

}  // namespace kivtools
