#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

#include "apps/kivtools/Language.h"

namespace kivtools {
namespace {

class Spoken {
 public:
  explicit Spoken(Speech speech) { SetSpeech(speech); }
  ~Spoken() { SetSpeech({}); }
  Spoken(const Spoken&) = delete;
  Spoken& operator=(const Spoken&) = delete;
};

TEST(LanguageTest, FillsThePlacesOfTheLanguageThatIsSpoken) {
  const auto say = [] { return Say({"{0} of {1} in {0}", "{1}: ăâîșț ĂÂÎȘȚ „a” {0}"}, -7, "ș{0}").Text(); };
  EXPECT_EQ(say(), "-7 of ș{0} in -7");
  {
    const Spoken romanian({Language::Romanian});
    EXPECT_EQ(say(), "ș{0}: ăâîșț ĂÂÎȘȚ „a” -7");
  }
  const Spoken plain({Language::Romanian, false});
  EXPECT_EQ(say(), "ș{0}: aaist AAIST \"a\" -7") << "data keeps its letters";
}

TEST(LanguageTest, CountsAsTheLanguageDoes) {
  const struct {
    std::uint64_t count;
    const char* english;
    const char* romanian;
  } kCases[] = {
      {0, "0 files", "0 fișiere"},
      {1, "1 file", "1 fișier"},
      {2, "2 files", "2 fișiere"},
      {19, "19 files", "19 fișiere"},
      {20, "20 files", "20 de fișiere"},
      {99, "99 files", "99 de fișiere"},
      {100, "100 files", "100 de fișiere"},
      {101, "101 files", "101 fișiere"},
      {119, "119 files", "119 fișiere"},
      {120, "120 files", "120 de fișiere"},
      {std::numeric_limits<std::uint64_t>::max(), "18446744073709551615 files", "18446744073709551615 fișiere"},
  };
  for (const auto& [count, english, romanian] : kCases) {
    EXPECT_EQ(Counted(count, kFiles).Text(), english);
    const Spoken speech({Language::Romanian});
    EXPECT_EQ(Counted(count, kFiles).Text(), romanian);
  }
}

}  // namespace
}  // namespace kivtools
