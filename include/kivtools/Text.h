/// @file
/// Text: single-byte strings in the Windows-1250 code page, and the way to and from UTF-8.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kivtools/Export.h"
#include "kivtools/Utf8.h"
#include "kivtools/Windows1250.h"

namespace kiv {

/// Windows-1250 bytes; positions and lengths are in bytes, which are also characters.
using Text = std::string;
/// A borrowed Text.
using TextView = std::string_view;
/// UTF-16 code units.
using WideText = std::u16string;
/// An ordered list of Text.
using StringList = std::vector<Text>;

/// Which form the letters s and t with a mark below take in UTF-8.
enum class DiacriticForm : std::uint8_t {
  /// U+015E, U+015F, U+0162, U+0163: what Windows-1250 itself maps to; the exact round trip.
  Cedilla,
  /// U+0218, U+0219, U+021A, U+021B: correct Romanian today; best on screens and in new documents.
  CommaBelow,
};

/// Converts Windows-1250 to UTF-8. Every byte has a character, so nothing can fail.
///
///     ToUtf8("\xAA""ASE")                              // "ŞASE", S with cedilla
///     ToUtf8("\xAA""ASE", DiacriticForm::CommaBelow)   // "ȘASE", S with comma below
[[nodiscard]] KIV_API std::string ToUtf8(TextView text, DiacriticForm form = DiacriticForm::Cedilla);

/// Converts UTF-8 to Windows-1250. The comma-below letters are taken as their cedilla forms, because both are typed
/// today. Throws ConversionError, naming the byte position (from 1) and the character, for malformed UTF-8 and for a
/// character that Windows-1250 lacks: nothing is ever replaced silently.
///
///     FromUtf8("ţară")   // the four bytes FE 61 72 E3; the same with the comma-below ț
[[nodiscard]] KIV_API Text FromUtf8(std::string_view utf8);

namespace detail {

/// A string literal as a template argument.
template <std::size_t Size>
struct FixedString {
  std::array<char, Size> bytes{};
  // Implicit, so that a literal can be a template argument.
  consteval FixedString(const char (&literal)[Size]) {  // NOLINT
    for (std::size_t i = 0; i < Size; ++i) {
      bytes[i] = literal[i];
    }
  }
  [[nodiscard]] constexpr std::string_view View() const { return {bytes.data(), Size - 1}; }
};

template <FixedString Utf8>
struct EncodedLiteral {
  static constexpr std::size_t CountCharacters() {
    std::size_t count = 0;
    for (std::size_t at = 0; at < Utf8.View().size(); ++count) {
      at += DecodeOrStop(at).length;
    }
    return count;
  }
  static constexpr utf8::Decoded DecodeOrStop(std::size_t position) {
    const utf8::Decoded decoded = utf8::DecodeAt(Utf8.View(), position);
    if (decoded.length == 0) {
      throw "the literal is not UTF-8";  // reached only at compile time, where it is the error message
    }
    return decoded;
  }
  static constexpr auto Encode() {
    std::array<char, CountCharacters() + 1> encoded{};
    std::size_t at = 0;
    for (std::size_t i = 0; i + 1 < encoded.size(); ++i) {
      const utf8::Decoded decoded = DecodeOrStop(at);
      const auto byte = windows1250::FromUnicode(windows1250::CedillaForm(decoded.character));
      if (!byte) {
        throw "the literal has a letter outside Windows-1250";
      }
      encoded[i] = static_cast<char>(*byte);
      at += decoded.length;
    }
    return encoded;
  }
  static constexpr auto kBytes = Encode();
};

}  // namespace detail

/// What the `_ro` literal gives: zero-terminated Windows-1250 bytes with static lifetime. It goes wherever a Text or a
/// TextView is wanted.
class TextLiteral {
 public:
  /// Wraps a view of static, zero-terminated bytes.
  consteval explicit TextLiteral(TextView view) : view_(view) {}

  // Implicit both ways, so that a literal fits a parameter, a variable's initialiser and a list of Text.
  constexpr operator TextView() const noexcept { return view_; }  // NOLINT
  operator Text() const { return Text(view_); }                   // NOLINT

  [[nodiscard]] constexpr const char* data() const noexcept { return view_.data(); }
  [[nodiscard]] constexpr std::size_t size() const noexcept { return view_.size(); }
  [[nodiscard]] constexpr bool empty() const noexcept { return view_.empty(); }
  [[nodiscard]] constexpr TextView::const_iterator begin() const noexcept { return view_.begin(); }
  [[nodiscard]] constexpr TextView::const_iterator end() const noexcept { return view_.end(); }

  friend constexpr bool operator==(TextLiteral left, TextLiteral right) { return left.view_ == right.view_; }
  friend constexpr bool operator==(TextLiteral left, TextView right) { return left.view_ == right; }
  friend Text operator+(Text left, TextLiteral right) { return std::move(left.append(right.view_)); }
  friend Text operator+(TextLiteral left, const Text& right) { return Text(left.view_) + right; }

 private:
  TextView view_;
};

namespace literals {

/// Windows-1250 Text written readably in UTF-8 source, converted at compile time. A letter that the code page lacks
/// does not compile; the comma-below letters count as their cedilla forms.
///
///     using namespace kiv::literals;
///     Text six = "ŞASE"_ro;   // the four bytes AA 41 53 45
template <detail::FixedString Utf8>
consteval TextLiteral operator""_ro() {
  constexpr auto& kBytes = detail::EncodedLiteral<Utf8>::kBytes;
  return TextLiteral(TextView(kBytes.data(), kBytes.size() - 1));
}

}  // namespace literals
}  // namespace kiv
