#include <gtest/gtest.h>

#include <random>

#include "apps/kivtools/CsvWriting.h"
#include "apps/kivtools/input/Csv.h"

namespace kivtools {
namespace {

TEST(CsvReader, SplitsByTheRules) {
  const struct {
    const char* why;
    std::string_view text;
    Records records;
  } kCases[] = {
      {"nothing", "", {}},
      {"only a byte-order mark", "\xEF\xBB\xBF", {}},
      {"plain, last line without its end", "a,b\nc,d", {{"a", "b"}, {"c", "d"}}},
      {"CR LF, mark",
       "\xEF\xBB\xBF"
       "a,b\r\nc,\r\n",
       {{"a", "b"}, {"c", ""}}},
      {"empty lines are records", "a\n\n\r\nb\n", {{"a"}, {""}, {""}, {"b"}}},
      {"empty fields", ",,\n", {{"", "", ""}}},
      {"semicolons; commas are text", "a;b,c\nd,e;f\n", {{"a", "b,c"}, {"d,e", "f"}}},
      {"tabulators", "a\tb;c\n", {{"a", "b;c"}}},
      {"the separator behind a quoted first field", "\"a,b\";c\n", {{"a,b", "c"}}},
      {"quotes", "\"a \"\"b\"\"\",\"\",\"c\r\nd\"\r\ne,f,g\n", {{"a \"b\"", "", "c\r\nd"}, {"e", "f", "g"}}},
      {"quoted last field without line end", "a,\"b\"", {{"a", "b"}}},
      {"zero bytes are text", std::string_view("a\0b,c\n", 6), {{std::string("a\0b", 3), "c"}}},
  };
  for (const auto& [why, text, records] : kCases) {
    EXPECT_EQ(ReadRecords(text), records) << why;
    EXPECT_EQ(ReadRecords(text, 1), records) << why << ", a byte at a time";
  }
}

TEST(CsvReader, RefusesBrokenQuotingWithItsLine) {
  const struct {
    std::string_view text;
    std::uint64_t line;
    std::string message;
  } kCases[] = {
      {"a,b\n\"c\nd\"x,e\n", 2, "field 1: text behind the closing quote"},
      {"a,b\n\nc,Tablă 24\" LED\n", 3, "field 2: a quote inside a field that is not quoted"},
      {"a,\"b\n", 1, "field 2: the closing quote is missing"},
      {"a,\"b\"\"\n", 1, "field 2: the closing quote is missing"},
  };
  for (const auto& [text, line, message] : kCases) {
    try {
      ReadRecords(text);
      ADD_FAILURE() << text;
    } catch (const LineError& error) {
      EXPECT_EQ(error.what(), message);
      EXPECT_EQ(error.Line(), line) << text;
    }
  }
}

TEST(CsvReader, BoundsTheMemoryOfAQuoteThatNeverEnds) {
  constexpr std::size_t kMost = std::size_t{16} * 1024 * 1024;
  try {
    ReadRecords("a\n\n\"" + std::string(kMost, '\n'));
    ADD_FAILURE();
  } catch (const LineError& error) {
    EXPECT_STREQ(error.what(), "a record of more than 16 MiB; does a quote lack its end?");
    EXPECT_EQ(error.Line(), 3U);
  }
  const std::string longest(kMost, 'x');
  EXPECT_EQ(ReadRecords(longest + "\nb"), (Records{{longest}, {"b"}}));
}

TEST(CsvReader, ReadsBackWhatIsQuotedAcrossBlocks) {
  std::mt19937 random(7);
  constexpr std::string_view kAlphabet = "ab,;\t\"\r\n ";
  Records records = {{"tells", "the separator"}};
  std::string text = "tells;the separator\n";
  for (int i = 0; i < 20000; ++i) {
    std::vector<std::string> fields(1 + random() % 4);
    for (std::string& field : fields) {
      field.resize(random() % 40);
      for (char& character : field) {
        character = kAlphabet[random() % kAlphabet.size()];
      }
    }
    text += WriteRecord(fields, ';', i % 2 == 0 ? "\n" : "\r\n");
    records.push_back(std::move(fields));
  }
  EXPECT_TRUE(ReadRecords(text) == records);
}

}  // namespace
}  // namespace kivtools
