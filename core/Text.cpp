#include "kivtools/Text.h"

#include <array>
#include <cstdio>

#include "kivtools/Errors.h"

namespace kiv {
namespace {

void AppendUtf8(std::string& out, char32_t character) {
  // Windows-1250 holds nothing above U+FFFF, so three bytes are the most.
  if (character < 0x80) {
    out.push_back(static_cast<char>(character));
  } else if (character < 0x800) {
    out.push_back(static_cast<char>(0xC0U | (character >> 6U)));
    out.push_back(static_cast<char>(0x80U | (character & 0x3FU)));
  } else {
    out.push_back(static_cast<char>(0xE0U | (character >> 12U)));
    out.push_back(static_cast<char>(0x80U | ((character >> 6U) & 0x3FU)));
    out.push_back(static_cast<char>(0x80U | (character & 0x3FU)));
  }
}

[[noreturn]] void RefuseCharacter(char32_t character, std::size_t position) {
  std::array<char, 96> message{};
  std::snprintf(message.data(), message.size(),
                "FromUtf8: caracterul U+%04X de la octetul %zu nu exista in Windows-1250",
                static_cast<unsigned>(character), position + 1);
  throw ConversionError(message.data());
}

}  // namespace

std::string ToUtf8(TextView text, DiacriticForm form) {
  std::string utf8;
  utf8.reserve(text.size() + text.size() / 8);
  for (const char byte : text) {
    const char32_t character = windows1250::ToUnicode(static_cast<unsigned char>(byte));
    AppendUtf8(utf8, form == DiacriticForm::CommaBelow ? windows1250::CommaBelowForm(character) : character);
  }
  return utf8;
}

Text FromUtf8(std::string_view utf8) {
  Text text;
  text.reserve(utf8.size());
  for (std::size_t at = 0; at < utf8.size();) {
    const utf8::Decoded decoded = utf8::DecodeAt(utf8, at);
    if (decoded.length == 0) {
      throw ConversionError("FromUtf8: secventa UTF-8 gresita la octetul " + std::to_string(at + 1));
    }
    const auto byte = windows1250::FromUnicode(windows1250::CedillaForm(decoded.character));
    if (!byte) {
      RefuseCharacter(decoded.character, at);
    }
    text.push_back(static_cast<char>(*byte));
    at += decoded.length;
  }
  return text;
}

}  // namespace kiv
