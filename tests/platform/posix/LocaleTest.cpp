#include <gtest/gtest.h>
#include <locale.h>

#include <cstdlib>

#include "kivtools/WinUtil/DateArithmetic.h"
#include "platform/Locale.h"
#include "platform/System.h"

namespace kiv {
namespace {

/// The value of a variable of the environment while this object lives, null for none.
class Variable {
 public:
  Variable(const char* name, const char* value) : name_(name) {
    const char* const before = std::getenv(name);
    before_ = before != nullptr ? std::optional<Text>(before) : std::nullopt;
    Set(value);
  }
  ~Variable() { Set(before_ ? before_->c_str() : nullptr); }

 private:
  void Set(const char* value) const { value != nullptr ? setenv(name_, value, 1) : unsetenv(name_); }

  const char* name_;
  std::optional<Text> before_;
};

/// The user's choice of language while this object lives.
struct UserLanguage : Variable {
  explicit UserLanguage(const char* name) : Variable("LC_ALL", name) {}
};

TEST(Locale, NumberOfTheUsersLanguage) {
  const struct {
    const char* all;
    const char* messages;
    const char* language;
    std::uint16_t expected;
  } cases[] = {
      {"ro_RO.UTF-8", "de_DE", "fr_FR", 0x0418},
      {"", "de_DE@euro", "fr_FR", 0x0407},
      {nullptr, nullptr, "fr", 0x040C},
      {nullptr, "", "hu.UTF-8", 0x040E},
      {"C", nullptr, "ro_RO", 0},
      {"POSIX", nullptr, nullptr, 0},
      {nullptr, nullptr, nullptr, 0},
      {"r", nullptr, nullptr, 0},
      {"roa_RO", nullptr, nullptr, 0},
  };
  for (const auto& [all, messages, language, expected] : cases) {
    const Variable first("LC_ALL", all);
    const Variable second("LC_MESSAGES", messages);
    const Variable third("LANG", language);
    EXPECT_EQ(platform::UserLanguage(), expected) << (all != nullptr ? all : "none");
  }
}

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
