#include <gmock/gmock.h>

#include <random>

#include "kivtools/WinUtil/Strings.h"

namespace kiv {
namespace {

using testing::ElementsAre;

TEST(Explode, SplitsUpToItsLimit) {
  const struct {
    TextView separators, text;
    std::int32_t limit;
    StringList pieces;
  } kCases[] = {
      {",", "a,b,,c", 10, {"a", "b", "", "c"}},
      {",", "a,b,,c", 4, {"a", "b", "", "c"}},
      {",", "a,b,,c", 3, {"a", "b", ",c"}},
      {",", "a,b,,c", 2, {"a", "b,,c"}},
      {",", "a,b,,c", 1, {"a,b,,c"}},
      {",", "a,b,,c", 0, {"a,b,,c"}},
      {",", "a,b,,c", INT32_MIN, {"a,b,,c"}},
      {",;", ";a,b;", INT32_MAX, {"", "a", "b", ""}},
      {",,", "a,b", 9, {"a", "b"}},
      {"", "a,b", 9, {"a,b"}},
      {",", "", 9, {""}},
      {"\xFE\x80",
       "a\xFE"
       "b\x80"
       "c",
       9,
       {"a", "b", "c"}},
      {TextView("\0", 1), TextView("a\0b", 3), 9, {"a", "b"}},
  };
  for (const auto& [separators, text, limit, pieces] : kCases) {
    EXPECT_EQ(Explode(separators, text, limit), pieces) << separators << " " << text << " " << limit;
  }
}

TEST(SplitTextOnSeparator, AppendsWhatIsNotEmpty) {
  StringList list = {"first"};
  SplitTextOnSeparator("a,b,,c", ",", list);
  SplitTextOnSeparator(";;", ";,", list);
  SplitTextOnSeparator("", ";", list);
  SplitTextOnSeparator("d e;f;", "; ", list);
  SplitTextOnSeparator("g,h", "", list);
  EXPECT_THAT(list, ElementsAre("first", "a", "b", "c", "d", "e", "f", "g,h"));
  SplitTextOnSeparator(list[7], ",", list);
  EXPECT_THAT(list, ElementsAre("first", "a", "b", "c", "d", "e", "f", "g,h", "g", "h"));
}

/// The rules as they are said, one character at a time.
struct Plain {
  static StringList Explode(TextView separators, TextView text, std::int32_t limit) {
    StringList pieces;
    std::size_t start = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (separators.find(text[i]) != TextView::npos &&
          static_cast<std::int64_t>(pieces.size()) < std::int64_t{limit} - 1) {
        pieces.emplace_back(text.substr(start, i - start));
        start = i + 1;
      }
    }
    pieces.emplace_back(text.substr(start));
    return pieces;
  }
  static StringList Split(TextView separators, TextView text) {
    StringList pieces;
    for (const Text& piece : Explode(separators, text, INT32_MAX)) {
      if (!piece.empty()) {
        pieces.push_back(piece);
      }
    }
    return pieces;
  }
  static Text Hash(TextView text) {
    std::uint32_t hash = 0;
    for (std::size_t i = 1; i <= text.size(); ++i) {
      hash ^= static_cast<unsigned char>(text[i - 1]) * (1U << (i % 23));
    }
    return std::to_string(hash);
  }
  static Text Clean(Text path) {
    for (std::size_t at; (at = path.find(R"(\\)", 2)) != Text::npos;) {
      path.erase(at, 1);
    }
    return path;
  }
};

TEST(StringFastPaths, GiveWhatTheStepsGive) {
  std::mt19937 random(5'105);
  for (int round = 0; round < 3'000; ++round) {
    // Lengths past the hash's groups and the counting steps; few different characters, so that all rules meet.
    Text text(random() % (round % 100 == 0 ? 9'000 : 600), '\0');
    for (char& character : text) {
      character = random() % 4 == 0 ? static_cast<char>(random()) : ",;\\a"[random() % 4];
    }
    const Text separators = Text(",;\\\xFF").substr(0, random() % 5);
    const auto limit = static_cast<std::int32_t>(random() % 2 == 0 ? random() % 40 : 1U << (random() % 31));
    ASSERT_EQ(Explode(separators, text, limit), Plain::Explode(separators, text, limit));
    StringList pieces;
    SplitTextOnSeparator(text, separators, pieces);
    ASSERT_EQ(pieces, Plain::Split(separators, text));
    ASSERT_EQ(StringHash(text), Plain::Hash(text));
    ASSERT_EQ(RemoveDualSlshPath(text), Plain::Clean(text));
  }
}

TEST(StringHash, HasFixedValues) {
  EXPECT_EQ(StringHash(""), "0");
  EXPECT_EQ(StringHash("A"), "130");
  EXPECT_EQ(StringHash(Text(22, '\0') + "\xFF"), "255");         // position 23 has weight 1
  EXPECT_EQ(StringHash(Text(21, '\0') + "\xFF"), "1069547520");  // position 22 has weight 4194304
  EXPECT_EQ(StringHash(Text(1'000'000, 'x') + "\xFE"), Plain::Hash(Text(1'000'000, 'x') + "\xFE"));
}

TEST(RemoveDualSlshPath, KeepsTheFirstTwoCharacters) {
  const struct {
    TextView path, cleaned;
  } kCases[] = {
      {R"(\\srv\\dir\\\file)", R"(\\srv\dir\file)"},
      {R"(\\\srv)", R"(\\\srv)"},
      {R"(\\\\srv\\)", R"(\\\srv\)"},
      {R"(c:\\a)", R"(c:\a)"},
      {"c://a", "c://a"},
      {R"(\)", R"(\)"},
      {"", ""},
      {R"(a\\)", R"(a\\)"},
  };
  for (const auto& [path, cleaned] : kCases) {
    EXPECT_EQ(RemoveDualSlshPath(path), cleaned) << path;
  }
}

TEST(TrimestruLuna, WalksTheYear) {
  for (int month = -2; month <= 14; ++month) {
    const int quarter = month < 1 || month > 12 ? -1 : month <= 3 ? 1 : month <= 6 ? 2 : month <= 9 ? 3 : 4;
    EXPECT_EQ(TrimestruLuna(month), quarter) << month;
  }
  EXPECT_EQ(TrimestruLuna(INT32_MAX), -1);
}

}  // namespace
}  // namespace kiv
