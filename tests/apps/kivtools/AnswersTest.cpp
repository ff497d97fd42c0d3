#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>

#include "apps/kivtools/values/Answers.h"

namespace kivtools {
namespace {

TEST(AppendWithFields, QuotesWhereItMustAndKeepsTheRecord) {
  const struct {
    const char* record;
    std::size_t gap;
    const char* field;
    const char* result;
  } kCases[] = {{"a;b\r\n", 0, "c", "a;b;c\r\n"},
                {"a;b\n", 2, "c;d", "a;b;;;\"c;d\"\n"},
                {"a", 0, "c\"d", "a;\"c\"\"d\""},
                {"", 1, "", ";;"},
                {"a\r", 0, "c\nd", "a;\"c\nd\"\r"},
                {"a\n", 0, "c\rd", "a;\"c\rd\"\n"},
                {"\"x\r\n\"\r\n", 0, "c,d", "\"x\r\n\";c,d\r\n"}};
  for (const auto& [record, gap, field, result] : kCases) {
    TextBuffer out;
    AppendWithFields(record, gap, ';', std::array<std::string_view, 1>{field}, out);
    EXPECT_EQ(out.View(), result);
  }
}

TEST(AppendWithFields, QuotesForOneCharacterAnywhere) {
  for (std::size_t size = 1; size <= 26; ++size) {
    for (std::size_t place = 0; place < size; ++place) {
      for (const char character : {';', '"', '\n', '\r', ',', '\x8A', '\xBB', '\0', ':', '!'}) {
        std::string field(size, 'x');
        field[place] = character;
        const bool quoted = std::string_view(";\"\n\r").find(character) != std::string_view::npos;
        std::string wanted = field;
        wanted.insert(place, character == '"' ? "\"" : "");
        TextBuffer out;
        AppendWithFields("a\n", 0, ';', std::array<std::string_view, 2>{"b", field}, out);
        EXPECT_EQ(out.View(), "a;b;" + (quoted ? "\"" + wanted + "\"" : field) + "\n") << size << " " << place;
      }
    }
  }
}

TEST(TextBuffer, KeepsWhatItHasWhileItGrows) {
  TextBuffer text;
  std::string model;
  for (int i = 0; i < 2000; ++i) {
    const std::string piece(static_cast<std::size_t>(i % 7), static_cast<char>('a' + i % 26));
    text += piece;
    text += 'x';
    text.AppendChanged(piece, [](char byte) { return byte == 'a' ? 'b' : byte; });
    model += piece + 'x' + (piece.starts_with('a') ? std::string(piece.size(), 'b') : piece);
    if (i % 100 == 99) {
      model.resize(model.size() / 2);
      text.Cut(model.size());
    }
    ASSERT_EQ(text.View(), model);
  }
}

}  // namespace
}  // namespace kivtools
