// The words of numbers are those of ICU's spell-out, which has neither "de" nor "un": it counts "una mie", "unu
// milion".
#include <gtest/gtest.h>
#include <unicode/rbnf.h>

#include <random>

#include "kivtools/Text.h"
#include "kivtools/WinUtil/ReadableWords.h"

namespace kiv {
namespace {

class SpellOut {
 public:
  SpellOut() : format_(icu::URBNF_SPELLOUT, icu::Locale("ro"), status_) {}

  std::string Words(std::int64_t number, GrammaticalGender gender) {
    static constexpr const char16_t* kRules[] = {u"%spellout-cardinal-masculine", u"%spellout-cardinal-feminine",
                                                 u"%spellout-cardinal-neuter"};
    icu::UnicodeString words;
    icu::FieldPosition place;
    format_.format(number, icu::UnicodeString(kRules[static_cast<std::size_t>(gender)]), words, place, status_);
    EXPECT_TRUE(U_SUCCESS(status_));
    words.findAndReplace(u"\u0219", u"\u015F");  // some versions have the comma, some the cedilla
    std::string utf8;
    words.toUTF8String(utf8);
    return utf8;
  }

 private:
  UErrorCode status_ = U_ZERO_ERROR;
  icu::RuleBasedNumberFormat format_;
};

void ReplaceAll(std::string& text, std::string_view what, std::string_view with) {
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size())) {
    text.replace(at, what.size(), with);
  }
}

TEST(ReadableWords, AreThoseOfThePeer) {
  SpellOut peer;
  std::mt19937_64 random(20);
  for (int i = -1'000; i < 60'000; ++i) {
    // All small numbers, then some of every size below 10^18, from which the peer writes digits.
    const std::int64_t number =
        i < 30'000 ? i : static_cast<std::int64_t>(random() % 1'000'000'000'000'000'000 >> random() % 60);
    for (const auto gender : {GrammaticalGender::Masculine, GrammaticalGender::Feminine, GrammaticalGender::Neuter}) {
      std::string words = ToUtf8(InCuvinte(number, gender));
      ReplaceAll(words, " de ", " ");
      for (const char* const scale : {"milion", "miliard", "bilion", "biliard"}) {
        ReplaceAll(words, std::string("un ") + scale, std::string("unu ") + scale);
      }
      ASSERT_EQ(words, peer.Words(number, gender)) << number;
    }
  }
}

}  // namespace
}  // namespace kiv
