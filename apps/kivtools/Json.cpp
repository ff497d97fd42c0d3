#include "apps/kivtools/Json.h"

#include "kivtools/Utf8.h"

namespace kivtools {

std::string JsonString(std::string_view text) {
  std::string json = "\"";
  for (std::size_t at = 0; at < text.size();) {
    const kiv::utf8::Decoded decoded = kiv::utf8::DecodeAt(text, at);
    const std::string_view bytes = text.substr(at, decoded.length == 0 ? 1 : decoded.length);
    if (decoded.length == 0) {
      json += "\\ufffd";
    } else if (decoded.character < 0x20 || decoded.character == 0x7F) {
      constexpr std::string_view kDigits = "0123456789abcdef";
      json.append("\\u00").append(1, kDigits[decoded.character >> 4U]).append(1, kDigits[decoded.character & 15U]);
    } else {
      json.append(decoded.character == U'"' || decoded.character == U'\\' ? "\\" : "").append(bytes);
    }
    at += bytes.size();
  }
  return json += '"';
}

}  // namespace kivtools
