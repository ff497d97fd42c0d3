#include <gtest/gtest.h>
#include <unicode/ucnv.h>
#include <unicode/ucol.h>

#include <random>
#include <string>

#include "kivtools/dataset/Collation.h"

// ICU's Romanian collator as the judge: of every pair of bytes, and of random words and their near relations.

namespace kiv {
namespace {

class Judge {
 public:
  Judge() {
    UErrorCode error = U_ZERO_ERROR;
    converter_ = ucnv_open("windows-1250", &error);
    collator_ = ucol_open("ro", &error);
    EXPECT_TRUE(U_SUCCESS(error));
  }
  ~Judge() {
    ucol_close(collator_);
    ucnv_close(converter_);
  }
  Judge(const Judge&) = delete;
  Judge& operator=(const Judge&) = delete;

  /// Holds both orders and what their prefixes say against the judge's.
  void Try(const Text& left, const Text& right) {
    const std::u16string leftUnits = Units(left);
    const std::u16string rightUnits = Units(right);
    for (const Collation collation : {Collation::Romanian, Collation::RomanianNoCase}) {
      ucol_setStrength(collator_, collation == Collation::Romanian ? UCOL_TERTIARY : UCOL_SECONDARY);
      const int expected = ucol_strcoll(collator_, leftUnits.data(), static_cast<std::int32_t>(leftUnits.size()),
                                        rightUnits.data(), static_cast<std::int32_t>(rightUnits.size()));
      ASSERT_EQ(CompareTexts(left, right, collation), expected)
          << testing::PrintToString(left) << " " << testing::PrintToString(right);
      ASSERT_EQ(CompareTexts(right, left, collation), -expected);
      const std::uint64_t leftPrefix = CollationPrefix(left, collation);
      const std::uint64_t rightPrefix = CollationPrefix(right, collation);
      if (leftPrefix != rightPrefix) {
        ASSERT_EQ(leftPrefix < rightPrefix ? -1 : 1, expected)
            << testing::PrintToString(left) << " " << testing::PrintToString(right);
      }
    }
  }

 private:
  std::u16string Units(const Text& text) {
    std::u16string units(text.size() * 2, u' ');
    UErrorCode error = U_ZERO_ERROR;
    const std::int32_t count = ucnv_toUChars(converter_, units.data(), static_cast<std::int32_t>(units.size()),
                                             text.data(), static_cast<std::int32_t>(text.size()), &error);
    EXPECT_TRUE(U_SUCCESS(error));
    units.resize(static_cast<std::size_t>(count));
    return units;
  }

  UConverter* converter_ = nullptr;
  UCollator* collator_ = nullptr;
};

TEST(CollationPeer, OrdersEveryPairOfBytesAsTheJudgeDoes) {
  Judge judge;
  for (int left = 0; left < 256 && !testing::Test::HasFatalFailure(); ++left) {
    for (int right = 0; right < 256; ++right) {
      judge.Try({static_cast<char>(left)}, {static_cast<char>(right)});
    }
  }
}

TEST(CollationPeer, OrdersWordsAsTheJudgeDoes) {
  Judge judge;
  std::mt19937 random(7);
  const auto below = [&](std::uint32_t limit) { return static_cast<std::uint32_t>(random() % limit); };
  // Few letters, so that words differ late and in marks and capitals alone, and now and then any byte.
  const Text letters = "aA\xE3\xC3\xE2\xC2\xE1iI\xEE\xCEsS\xBA\xAA\x9AtT\xFE\xDE\x99\xDF\x85. -1";
  const auto byte = [&] { return below(9) == 0 ? static_cast<char>(below(256)) : letters[below(27)]; };
  Text before;
  for (int i = 0; i < 100'000 && !testing::Test::HasFatalFailure(); ++i) {
    Text word;
    for (std::uint32_t size = below(14); size > 0; --size) {
      word += byte();
    }
    judge.Try(before, word);
    Text relation = word;
    for (char& letter : relation) {
      letter = below(6) == 0 ? byte() : letter;
    }
    judge.Try(word, relation);
    before = word;
  }
}

}  // namespace
}  // namespace kiv
