#include <gtest/gtest.h>
#include <locale.h>

#include <cstdlib>

#include "kivtools/WinUtil/DateArithmetic.h"
#include "platform/Locale.h"

namespace kiv {
namespace {

/// The user's choice of language while this object lives.
class UserLanguage {
 public:
  explicit UserLanguage(const char* name) {
    const char* const before = std::getenv("LC_ALL");
    before_ = before != nullptr ? std::optional<Text>(before) : std::nullopt;
    setenv("LC_ALL", name, 1);
  }
  ~UserLanguage() { before_ ? setenv("LC_ALL", before_->c_str(), 1) : unsetenv("LC_ALL"); }

 private:
  std::optional<Text> before_;
};

TEST(Locale, TimeFollowsTheUsersLanguage) {
  const UserLanguage plain("C.UTF-8");
  EXPECT_EQ(platform::TimeInUserFormat(14, 7, 9), "14:07:09");
  const UserLanguage american("en_US.UTF-8");
  const locale_t installed = newlocale(LC_TIME_MASK, "en_US.UTF-8", nullptr);
  EXPECT_EQ(platform::TimeInUserFormat(14, 7, 9),
            installed != nullptr ? std::optional<Text>("02:07:09 PM") : std::nullopt);
  if (installed != nullptr) {
    freelocale(installed);
  }
}

TEST(Locale, WithoutAFormatTimesHaveTwoDigitsEach) {
  const UserLanguage unknown("xx_XX");
  EXPECT_EQ(platform::TimeInUserFormat(14, 7, 9), std::nullopt);
  Text total;
  Text remaining;
  CalcDurataTotala(DateTime(0), DateTime::Encode(1899, 12, 30, 1, 2, 3), 2, 1, total, remaining);
  EXPECT_EQ(total, "02:04:06");
  EXPECT_EQ(remaining, "01:02:03");
}

}  // namespace
}  // namespace kiv
