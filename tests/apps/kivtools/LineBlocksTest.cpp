#include <gtest/gtest.h>

#include <random>
#include <string>

#include "apps/kivtools/CsvWriting.h"
#include "apps/kivtools/input/LineBlocks.h"

namespace kivtools {
namespace {

std::vector<std::string> LinesOf(std::string_view text, std::size_t piece = std::string_view::npos) {
  LineBlocks<std::vector<std::string>> blocks(SourceOf(text, piece));
  std::vector<std::string> all;
  blocks.Run(
      [](std::string_view lines, std::vector<std::string>& result) {
        result.clear();
        ForEachLine(lines, [&](std::string_view line) { result.emplace_back(line); });
      },
      [&](const std::vector<std::string>& result) { all.insert(all.end(), result.begin(), result.end()); });
  return all;
}

TEST(LineBlocks, SplitsAtLineEnds) {
  const struct {
    std::string_view text;
    std::vector<std::string> lines;
  } kCases[] = {
      {"", {}}, {"a", {"a"}}, {"a\n", {"a"}}, {"\n\r\n", {"", ""}}, {"a\r\nb\rc\r\n\nd\r", {"a", "b\rc", "", "d"}}};
  for (const auto& [text, lines] : kCases) {
    EXPECT_EQ(LinesOf(text), lines) << text;
    EXPECT_EQ(LinesOf(text, 1), lines) << text << ", a byte at a time";
  }
}

TEST(LineBlocks, KeepsTheOrderAcrossBlocksAndThreads) {
  std::mt19937 random(5);
  std::vector<std::string> lines;
  std::string text;
  for (int i = 0; i < 100000; ++i) {
    lines.push_back(std::to_string(i) +
                    std::string(i % 5000 == 0 ? 700000 : random() % 60, 'x'));  // some outgrow a block
    text += lines.back() + "\n";
  }
  for (const std::size_t piece : {std::string_view::npos, std::size_t{100000}, std::size_t{5000}}) {
    EXPECT_TRUE(LinesOf(text, piece) == lines) << piece;
  }
}

TEST(LineBlocks, PassesOnWhatTheWorkThrowsAndRefusesEndlessLines) {
  const std::string text(3'000'000, '\n');
  LineBlocks<int> blocks(SourceOf(text));
  const auto run = [&] {
    blocks.Run([](std::string_view, int&) { throw InputError("no"); }, [](int) { ADD_FAILURE(); });
  };
  EXPECT_THROW(run(), InputError);
  EXPECT_THROW(LinesOf(std::string(LineBlocks<int>::kLongestLine + 1, 'x')), InputError);
}

}  // namespace
}  // namespace kivtools
