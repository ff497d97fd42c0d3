#include <gtest/gtest.h>

#include <tuple>

#include "kivtools/Types.h"

namespace kiv {
namespace {

using namespace literals;

TEST(TextLiteral, IsWindows1250AtCompileTime) {
  static_assert("ŞASE"_ro == TextView("\xAA"
                                      "ASE"));
  static_assert("șțȘȚ"_ro == "şţŞŢ"_ro, "comma-below letters count as cedilla letters");
  static_assert(""_ro.empty());
  static_assert("a\0b"_ro.size() == 3);
  Text copied = "ăâîşţ"_ro;
  EXPECT_EQ(copied, "\xE3\xE2\xEE\xBA\xFE");
  const StringList list = {"ă"_ro, "plain"};
  EXPECT_EQ(list[0], "ă"_ro);
}

TEST(Utf8, EveryByteRoundTripsInBothForms) {
  for (int byte = 0; byte < 256; ++byte) {
    const Text text(1, static_cast<char>(byte));
    EXPECT_EQ(FromUtf8(ToUtf8(text)), text) << byte;
    EXPECT_EQ(FromUtf8(ToUtf8(text, DiacriticForm::CommaBelow)), text) << byte;
  }
  EXPECT_EQ(ToUtf8("\xAA\xFE\x80"), "Şţ€");
  EXPECT_EQ(ToUtf8("\xAA\xFE\xBA\xDE", DiacriticForm::CommaBelow), "ȘțșȚ");
}

TEST(Utf8, ReportsWhatItCannotConvert) {
  const struct {
    std::string_view utf8;
    std::string_view message;
  } kCases[] = {
      {"a\xF1o", "FromUtf8: secventa UTF-8 gresita la octetul 2"},            // a Latin-1 byte
      {"\xC5", "FromUtf8: secventa UTF-8 gresita la octetul 1"},              // cut
      {"\xC1\x81", "FromUtf8: secventa UTF-8 gresita la octetul 1"},          // overlong, two bytes
      {"\xE0\x80\x80", "FromUtf8: secventa UTF-8 gresita la octetul 1"},      // overlong, three bytes
      {"\xED\xA0\x80", "FromUtf8: secventa UTF-8 gresita la octetul 1"},      // surrogate
      {"\xF5\x80\x80\x80", "FromUtf8: secventa UTF-8 gresita la octetul 1"},  // above U+10FFFF
      {"lei ñ", "FromUtf8: caracterul U+00F1 de la octetul 5 nu exista in Windows-1250"},
      {"😀", "FromUtf8: caracterul U+1F600 de la octetul 1 nu exista in Windows-1250"},
  };
  for (const auto& [utf8, message] : kCases) {
    try {
      std::ignore = FromUtf8(utf8);
      ADD_FAILURE() << utf8;
    } catch (const ConversionError& error) {
      EXPECT_EQ(error.what(), message);
    }
  }
}

}  // namespace
}  // namespace kiv
