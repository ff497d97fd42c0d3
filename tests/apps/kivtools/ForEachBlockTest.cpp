#include <gmock/gmock.h>

#include <atomic>
#include <new>
#include <random>
#include <string>
#include <system_error>

#include "apps/kivtools/CsvWriting.h"
#include "apps/kivtools/input/ForEachBlock.h"
#include "apps/kivtools/input/Lines.h"

namespace kivtools {
namespace {

using testing::ElementsAre;

constexpr std::size_t kMebibyte = std::size_t{1024} * 1024;

std::uint64_t CopyLines(std::span<char> text, std::vector<std::string>& lines) {
  lines.clear();
  return ForEachLine({text.data(), text.size()}, [&](std::string_view line) { lines.emplace_back(line); });
}

struct Collected {
  std::vector<std::string> lines;
  void operator()(const std::vector<std::string>& more, std::uint64_t line) {
    EXPECT_EQ(line, lines.size() + 1);
    lines.insert(lines.end(), more.begin(), more.end());
  }
};

std::vector<std::string> LinesOf(std::string_view text, std::size_t piece = std::string_view::npos,
                                 Workers::Starter starter = Workers::Start) {
  BlockReader reader(SourceOf(text, piece), RecordKind::Line);
  Collected all;
  ForEachBlock<std::vector<std::string>>(reader, CopyLines, std::ref(all), std::move(starter));
  return all.lines;
}

/// A starter that gives so many threads and fails then.
Workers::Starter FailingAfter(int threads) {
  return [left = threads](std::function<void()> body) mutable {
    if (left-- <= 0) {
      throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
    }
    return std::thread(std::move(body));
  };
}

TEST(ForEachBlock, SplitsAtLineEndsAndDropsTheMark) {
  const struct {
    std::string_view text;
    std::vector<std::string> lines;
  } kCases[] = {{"", {}},
                {"a", {"a"}},
                {"a\n", {"a"}},
                {"\n\r\n", {"", ""}},
                {"a\r\nb\rc\r\n\nd\r", {"a", "b\rc", "", "d"}},
                {"\xEF\xBB\xBF", {}},
                {"\xEF\xBB\xBF\xEF\xBB\xBF\nb", {"\xEF\xBB\xBF", "b"}},
                {"\xEF\xBB", {"\xEF\xBB"}},
                {"\xEF\xBB\nb", {"\xEF\xBB", "b"}}};
  for (const auto& [text, lines] : kCases) {
    EXPECT_EQ(LinesOf(text), lines) << text;
    EXPECT_EQ(LinesOf(text, 1), lines) << text << ", a byte at a time";
  }
  BlockReader keeps(SourceOf("\xEF\xBB\xBFx"), RecordKind::Line, BlockReader::ByteOrderMark::Keep);
  EXPECT_EQ(keeps.PeekFirst(), "\xEF\xBB\xBFx");
}

TEST(ForEachBlock, KeepsTheOrderWithAnyNumberOfThreads) {
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
  for (const int threads : {0, 1}) {
    EXPECT_TRUE(LinesOf(text, 100000, FailingAfter(threads)) == lines) << threads << " threads";
  }
}

TEST(ForEachBlock, LeavesNoWorkerWhateverFails) {
  // Long lines make many blocks in work at once; what a worker still touched after the end would be freed memory.
  const std::string text = [] {
    std::string lines;
    for (int i = 0; i < 4000; ++i) {
      lines += std::string(8000, 'x') + "\n";
    }
    return lines;
  }();
  enum Fault { kSource, kWork, kDeliver, kFaults };
  for (int round = 0; round < 20; ++round) {
    for (int fault = kSource; fault < kFaults; ++fault) {
      for (const int threads : {0, 1, 100}) {
        std::atomic<int> working = 0;
        std::atomic<std::size_t> delivered = 0;
        int reads = 0;
        ByteSource whole = SourceOf(text, 100000);
        BlockReader reader(
            [&](char* into, std::size_t capacity) {
              if (fault == kSource && ++reads > 5 + round) {
                throw std::bad_alloc();
              }
              return whole(into, capacity);
            },
            RecordKind::Line);
        const auto run = [&] {
          ForEachBlock<std::string>(
              reader,
              [&](std::span<char> block, std::string& result) {
                ++working;
                result.assign(block.begin(), block.end());
                --working;
                if (fault == kWork && delivered > 400000) {
                  throw std::bad_alloc();
                }
                return std::uint64_t{0};
              },
              [&](const std::string& result, std::uint64_t) {
                delivered += result.size();
                if (fault == kDeliver && delivered > 400000) {
                  throw std::bad_alloc();
                }
              },
              FailingAfter(threads));
        };
        EXPECT_THROW(run(), std::bad_alloc) << fault;
        EXPECT_EQ(working, 0) << fault;
        if (fault == kSource) {
          // Whole lines of every piece that was read.
          EXPECT_EQ(delivered.load(), (std::size_t{5} + static_cast<std::size_t>(round)) * 100000 / 8001 * 8001);
        }
      }
    }
  }
}

TEST(ForEachBlock, DeliversWhatWasWorkedOutBeforeAFaultAndNamesItsLine) {
  std::string text;
  for (int i = 1; i <= 300000; ++i) {
    text += std::to_string(i) + "\n";
  }
  for (const std::size_t piece : {std::string_view::npos, std::size_t{70000}, std::size_t{1000}}) {
    BlockReader reader(SourceOf(text, piece), RecordKind::Line);
    Collected all;
    try {
      ForEachBlock<std::vector<std::string>>(
          reader,
          [](std::span<char> block, std::vector<std::string>& lines) {
            lines.clear();
            return ForEachLine({block.data(), block.size()}, [&](std::string_view line) {
              if (line == "234567") {
                throw LineError(lines.size() + 1, AsItIs("no"));
              }
              lines.emplace_back(line);
            });
          },
          std::ref(all));
      ADD_FAILURE();
    } catch (const LineError& error) {
      EXPECT_EQ(error.Line(), 234567U);
      EXPECT_STREQ(error.what(), "no");
    }
    EXPECT_EQ(all.lines.size(), 234566U);
  }
}

TEST(ForEachBlock, RefusesLinesOfMoreThan16MebibytesAfterWhatCameBefore) {
  const std::string longest(16 * kMebibyte, 'x');
  for (const std::size_t piece : {std::string_view::npos, 3 * kMebibyte}) {
    EXPECT_TRUE(LinesOf("a\n" + longest + "\nb\n", piece) == (std::vector<std::string>{"a", longest, "b"}));
    EXPECT_EQ(LinesOf(longest, piece).front().size(), longest.size());
    for (const char* const behind : {"x", "x\nb\n"}) {
      const std::string text = "a\nb\n" + longest + behind;
      BlockReader reader(SourceOf(text, piece), RecordKind::Line);
      Collected all;
      try {
        ForEachBlock<std::vector<std::string>>(reader, CopyLines, std::ref(all));
        ADD_FAILURE();
      } catch (const LineError& error) {
        EXPECT_EQ(error.Line(), 3U);
        EXPECT_STREQ(error.what(), "a line of more than 16 MiB");
      }
      EXPECT_THAT(all.lines, ElementsAre("a", "b"));
    }
  }
}

TEST(BlockReader, GivesWholeCsvRecordsAndTheFirstApart) {
  constexpr std::string_view kText = "\xEF\xBB\xBF\"h\n1\",x\n\"a\nb\",1\nc,\"2\n\n\"\nlast,\"\n";
  for (const std::size_t piece : {kText.size(), std::size_t{1}, std::size_t{7}}) {
    BlockReader reader(SourceOf(kText, piece), RecordKind::Csv);
    EXPECT_EQ(reader.PeekFirst(), "\"h\n1\",x\n");
    reader.DropFirst();
    EXPECT_EQ(reader.FirstLine(), 3U);
    Block block;
    std::string all;
    while (reader.Next(block)) {
      const std::string_view text(block.Text().data(), block.Text().size());
      EXPECT_TRUE(std::ranges::count(text, '"') % 2 == 0 || text.ends_with("last,\"\n")) << text;
      all += text;
    }
    EXPECT_EQ(all, kText.substr(kText.find("\"a")));
  }
}

}  // namespace
}  // namespace kivtools
