#include <gtest/gtest.h>

#include <limits>
#include <set>

#include "Expect.h"
#include "kivtools/Host/Headless.h"
#include "platform/FailingCalls.h"
#include "platform/TestFolder.h"
#include "tools/LargeFontScaler/Ratio.h"

namespace kiv::large_fonts {

inline void PrintTo(const Ratio& ratio, std::ostream* out) {
  *out << ratio.multiplier << ':' << ratio.divisor;
}

namespace {

constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

class LargeFonts : public testing::Test {
 protected:
  LargeFonts() {
    host_.GetScreen().SetMessageFontHeight(-13);
    host::Install(host_);
  }
  /// The ratio from a file with that content.
  [[nodiscard]] Ratio Of(std::string_view content) const {
    WriteWhole(folder_ / "LargeFonts.txt", content);
    return ReadRatio(folder_.Path());
  }

  TestFolder folder_;
  host::headless::Host host_;
};

TEST_F(LargeFonts, TheFirstLineHoldsTheRatio) {
  const struct {
    const char* content;
    Ratio ratio;
  } cases[] = {
      {"5:4", {5, 4}},
      {"5:4\r\n9:9", {5, 4}},
      {"5:4\n9:9", {5, 4}},
      {"5:4\r9:9", {5, 4}},
      {" 5 : 4 px", {5, 4}},
      {"a-5b:+4c", {5, 4}},
      {"007:03", {7, 3}},
      {"", {1, 1}},
      {"\r\n5:4", {8, 8}},  // the first line is there, and empty
      {"  \n", {8, 8}},
      {"garbage", {8, 8}},
      {"\xFF\xFE\x01", {8, 8}},
      {"12", {12, 12}},
      {"0", {0, 0}},
      {":", {8, 8}},
      {":4", {8, 4}},
      {"5:", {5, 8}},
      {"5:4:3", {5, 8}},
      {"::", {8, 8}},
      {"3:0", {3, 0}},
      {"2147483647:2147483647", {kMost, kMost}},
      {"2147483648:99999999999999999999999", {8, 8}},
  };
  for (const auto& [content, ratio] : cases) {
    EXPECT_EQ(Of(content), ratio) << content;
  }
  EXPECT_EQ(Of("5" + std::string(100'000, ' ') + ":4"), (Ratio{5, 5}));  // nobody types that
}

TEST_F(LargeFonts, AMissingFileIsMade) {
  EXPECT_EQ(ReadRatio(folder_.Path()), (Ratio{1, 1}));
  EXPECT_EQ(ReadWhole(folder_ / "LargeFonts.txt"), "1:1\r\n");
  EXPECT_EQ(ReadRatio(folder_.Path()), (Ratio{1, 1}));
}

TEST_F(LargeFonts, TheMessageFontDecidesWhereNoFileCanBe) {
  const std::filesystem::path missing = folder_ / "nu exista";
  const struct {
    std::int32_t height;
    Ratio ratio;
  } cases[] = {{-13, {13, 11}}, {13, {13, 8}}, {0, {0, 8}}, {-kMost - 1, {-kMost - 1, 11}}};
  for (const auto& [height, ratio] : cases) {
    host_.GetScreen().SetMessageFontHeight(height);
    EXPECT_EQ(ReadRatio(missing), ratio);
  }
  host_.GetScreen().SetMessageFontHeight(-13);
  EXPECT_FALSE(std::filesystem::exists(missing));
  EXPECT_EQ(ReadRatio({}), (Ratio{13, 11}));
  EXPECT_FALSE(std::filesystem::exists("LargeFonts.txt"));
  std::filesystem::create_directory(folder_ / "LargeFonts.txt");  // the name is taken, but by no file
  EXPECT_EQ(ReadRatio(folder_.Path()), (Ratio{13, 11}));
}

TEST_F(LargeFonts, EveryFailureOfTheSystemHasItsFallBackOrIsTold) {
  const auto with = [this](bool fileThere, std::size_t failing, bool& failed) {
    std::filesystem::remove(folder_ / "LargeFonts.txt");
    if (fileThere) {
      WriteWhole(folder_ / "LargeFonts.txt", "5:4");
    }
    const FailingCalls calls(failing);
    std::string outcome;
    try {
      const Ratio ratio = ReadRatio(folder_.Path());
      outcome = std::to_string(ratio.multiplier) + ":" + std::to_string(ratio.divisor);
    } catch (const OsError& error) {
      outcome = error.Code() == 5 ? "told" : "wrong code";
    }
    failed = calls.Failed();
    return outcome;
  };
  for (const bool fileThere : {true, false}) {
    bool failed = true;
    for (std::size_t failing = 0; failed; ++failing) {
      const std::string outcome = with(fileThere, failing, failed);
      const std::set<std::string> expected =
          fileThere ? std::set<std::string>{"5:4", "told", "13:11"} : std::set<std::string>{"1:1", "told", "13:11"};
      EXPECT_TRUE(expected.contains(outcome)) << failing << ": " << outcome;
      // A file that is there is never overwritten.
      EXPECT_EQ(fileThere ? ReadWhole(folder_ / "LargeFonts.txt") : "5:4", "5:4");
      if (!failed) {
        EXPECT_EQ(outcome, fileThere ? "5:4" : "1:1");
        EXPECT_GT(failing, 2U);
      }
    }
  }
}

}  // namespace
}  // namespace kiv::large_fonts
