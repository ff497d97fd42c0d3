#include "core/Windows1250Codec.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "kivtools/Errors.h"

namespace kiv::windows1250 {
namespace {

const unsigned char* Bytes(std::string_view text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

/// Lengthens a string by what `fill` writes into the room for `most` units more; returns its number.
template <class String, class Fill>
void AppendFilled(String& string, std::size_t most, Fill fill) {
  const std::size_t before = string.size();
#ifdef __cpp_lib_string_resize_and_overwrite
  string.resize_and_overwrite(before + most, [&](auto* units, std::size_t) { return before + fill(units + before); });
#else
  string.resize(before + most);
  string.resize(before + fill(string.data() + before));
#endif
}

/// Texts up to this length have their string made once, of the right length.
constexpr std::size_t kShort = 128;

/// Long texts are taken in pieces, so that what is written is still in the fastest cache when it is looked at again.
constexpr std::size_t kPiece = 4096;

[[noreturn]] void RefuseCharacter(char32_t character, std::size_t position) {
  std::array<char, 96> message{};
  std::snprintf(message.data(), message.size(),
                "FromUtf8: caracterul U+%04X de la octetul %zu nu exista in Windows-1250",
                static_cast<unsigned>(character), position + 1);
  throw ConversionError(message.data());
}

/// Appends the character that starts at `position`; returns where the next one starts.
std::size_t AppendCharacter(Text& text, std::string_view utf8, std::size_t position) {
  const utf8::Decoded decoded = utf8::DecodeAt(utf8, position);
  if (decoded.length == 0) {
    throw ConversionError("FromUtf8: secventa UTF-8 gresita la octetul " + std::to_string(position + 1));
  }
  const auto byte = FromUnicode(CedillaForm(decoded.character));
  if (!byte) {
    RefuseCharacter(decoded.character, position);
  }
  text.push_back(static_cast<char>(*byte));
  return position + decoded.length;
}

}  // namespace

WideText ToWide(TextView text, const Kernels& kernels) {
  WideText wide;
  const auto append = [&](TextView piece) {
    const std::size_t length = std::min(piece.find('\0'), piece.size());
    AppendFilled(wide, length, [&](char16_t* out) {
      kernels.toWide(Bytes(piece), length, out);
      return length;
    });
    return length == piece.size();
  };
  if (text.size() <= kPiece) {
    append(text);
    return wide;
  }
  wide.reserve(text.size());
  while (!text.empty() && append(text.substr(0, kPiece))) {
    text.remove_prefix(std::min(text.size(), kPiece));
  }
  return wide;
}

Text FromWide(std::u16string_view wide, const Kernels& kernels) {
  Text text;
  text.reserve(wide.size());
  while (!wide.empty()) {
    const std::u16string_view piece = wide.substr(0, kPiece);
    std::size_t length = piece.size();
    AppendFilled(text, length, [&](char* out) {
      kernels.fromWide(piece.data(), piece.size(), reinterpret_cast<unsigned char*>(out));
      // Only the zero becomes a zero, and bytes are searched faster than units.
      length = std::min(TextView(out, length).find('\0'), length);
      return length;
    });
    if (length < piece.size()) {
      break;
    }
    wide.remove_prefix(length);
  }
  return text;
}

std::string ToUtf8(TextView text, DiacriticForm form, const Kernels& kernels) {
  const Utf8Table& table = form == DiacriticForm::CommaBelow ? kUtf8CommaBelow : kUtf8Cedilla;
  std::array<unsigned char, 3 * kWindow + kSlack> window;  // not initialised: the kernel fills it
  const auto converted = [&](TextView piece) {
    const std::size_t length = kernels.toUtf8(Bytes(piece), piece.size(), table, window.data());
    return std::string_view(reinterpret_cast<const char*>(window.data()), length);
  };
  if (text.size() <= kWindow) {
    return std::string(converted(text));
  }
  std::string utf8;
  utf8.reserve(text.size() + text.size() / 8);
  while (!text.empty()) {
    const std::size_t ascii = kernels.asciiAhead(Bytes(text), std::min(text.size(), kPiece));
    utf8.append(text.substr(0, ascii));
    text.remove_prefix(ascii);
    utf8.append(converted(text.substr(0, kWindow)));
    text.remove_prefix(std::min(text.size(), kWindow));
  }
  return utf8;
}

Text FromUtf8(std::string_view utf8, const Kernels& kernels) {
  std::array<unsigned char, kWindow + kSlack> window;  // not initialised: the kernel fills it
  if (utf8.size() <= kShort) {
    const Progress progress = kernels.fromUtf8(Bytes(utf8), utf8.size(), window.data());
    if (progress.read == utf8.size()) {
      return {reinterpret_cast<const char*>(window.data()), progress.written};
    }
  }
  Text text;
  text.reserve(utf8.size());
  std::size_t at = 0;
  while (at < utf8.size()) {
    const std::size_t ascii = kernels.asciiAhead(Bytes(utf8.substr(at)), std::min(utf8.size() - at, kPiece));
    text.append(utf8.substr(at, ascii));
    at += ascii;
    const std::string_view piece = utf8.substr(at, kWindow);
    const Progress progress = kernels.fromUtf8(Bytes(piece), piece.size(), window.data());
    text.append(reinterpret_cast<const char*>(window.data()), progress.written);
    at += progress.read;
    if (progress.read < piece.size()) {
      at = AppendCharacter(text, utf8, at);
    }
  }
  return text;
}

}  // namespace kiv::windows1250
