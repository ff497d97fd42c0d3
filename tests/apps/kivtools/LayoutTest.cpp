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
