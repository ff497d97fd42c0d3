#include <gmock/gmock.h>

#include "apps/kivtools/Layout.h"
#include "apps/kivtools/Shown.h"

namespace kivtools {
namespace {

TEST(Layout, CountsColumnsNotBytes) {
  const struct {
    const char* text;
    std::size_t width;
  } kCases[] = {{"", 0}, {"abc", 3}, {"ȘASE", 4}, {"„×”", 3}, {"s\u0326", 1}, {"茶", 2}, {"😀", 2}, {"\xC8", 1}};
  for (const auto& [text, width] : kCases) {
    EXPECT_EQ(DisplayWidth(text), width) << text;
  }
  const struct {
    const char *before, *first, *last, *after;
    std::size_t width;
  } kRanges[] = {{"\u02FF", "\u0300", "\u036F", "\u0370", 0},
                 {"\u200A", "\u200B", "\u200D", "\u200E", 0},
                 {"\u20CF", "\u20D0", "\u20FF", "\u2100", 0},
                 {"\uFDFF", "\uFE00", "\uFE0F", "\uFE10", 0},
                 {"\uFE1F", "\uFE20", "\uFE2F", "", 0},
                 {"\u10FF", "\u1100", "\u115F", "\u1160", 2},
                 {"\u2E7F", "\u2E80", "\u303E", "\u303F", 2},
                 {"\u3040", "\u3041", "\uA4CF", "\uA4D0", 2},
                 {"\uABFF", "\uAC00", "\uD7A3", "\uD7A4", 2},
                 {"\uF8FF", "\uF900", "\uFAFF", "\uFB00", 2},
                 {"", "\uFE30", "\uFE6F", "\uFE70", 2},
                 {"\uFEFF", "\uFF00", "\uFF60", "\uFF61", 2},
                 {"\U0001F2FF", "\U0001F300", "\U0001FAFF", "\U0001FB00", 2}};
  for (const auto& [before, first, last, after, width] : kRanges) {
    EXPECT_EQ(DisplayWidth(first), width) << first;
    EXPECT_EQ(DisplayWidth(last), width) << last;
    EXPECT_EQ(DisplayWidth(std::string(before) + after), (*before != '\0' ? 1U : 0U) + (*after != '\0' ? 1U : 0U))
        << first;
  }
  EXPECT_EQ(PadEnd("ȘA", 4) + "|" + PadStart("ȘA", 4) + PadStart("ȘASE", 2), "ȘA  |  ȘAȘASE");
}

TEST(Layout, WrapsAtBlanksAndCutsWhatHasNone) {
  using testing::ElementsAre;
  EXPECT_THAT(Wrap("", 5), ElementsAre(""));
  EXPECT_THAT(Wrap("masă de stejar", 9), ElementsAre("masă de", "stejar"));
  EXPECT_THAT(Wrap("masă de  stejar", 7), ElementsAre("masă de", "stejar"));
  EXPECT_THAT(Wrap("ȘȚĂÎÂ", 2), ElementsAre("ȘȚ", "ĂÎ", "Â"));
  EXPECT_THAT(Wrap("a\n\nb c", 9), ElementsAre("a", "", "b c"));
  EXPECT_THAT(Wrap("茶", 1), ElementsAre("茶"));
  EXPECT_THAT(Wrap("abc   \nd", 3), ElementsAre("abc", "d"));
}

TEST(Shown, NeverLetsAValueActOnTheTerminal) {
  EXPECT_EQ(Shown("ȘASE \"x\""), "\"ȘASE \"x\"\"");
  EXPECT_EQ(Shown("a\x1B[2J\n\xC2\x9B\xFF\u202E"), "\"a\\x1B[2J\\x0A\\xC2\\x9B\\xFF\\xE2\\x80\\xAE\"");
  EXPECT_EQ(Shown(std::string(100, 'x')), "\"" + std::string(60, 'x') + "...\"");
}

}  // namespace
}  // namespace kivtools
