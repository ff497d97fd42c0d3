#include <gtest/gtest.h>
#include <windows.h>

#include "kivtools/WinUtil/DateArithmetic.h"
#include "platform/Locale.h"

namespace kiv {
namespace {

/// The user's long time format while this object lives.
class UserTimeFormat {
 public:
  explicit UserTimeFormat(const wchar_t* format) {
    GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_STIMEFORMAT, before_, 80);
    SetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_STIMEFORMAT, format);
  }
  ~UserTimeFormat() { SetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_STIMEFORMAT, before_); }

 private:
  wchar_t before_[80] = L"";
};

TEST(Locale, TimeFollowsTheUsersFormat) {
  {
    const UserTimeFormat romanian(L"HH:mm:ss");
    EXPECT_EQ(platform::TimeInUserFormat(14, 7, 9), "14:07:09");
  }
  const UserTimeFormat own(L"H'h \u0219i' mm");  // a letter that has only its cedilla form in the code page
  EXPECT_EQ(platform::TimeInUserFormat(14, 7, 9), std::nullopt);
  Text total;
  Text remaining;
  CalcDurataTotala(DateTime(0), DateTime::Encode(1899, 12, 30, 1, 2, 3), 2, 1, total, remaining);
  EXPECT_EQ(total, "02:04:06");
  const UserTimeFormat cedilla(L"H'h \u015Fi' mm");
  EXPECT_EQ(platform::TimeInUserFormat(14, 7, 9), "14h \xBAi 07");
}

}  // namespace
}  // namespace kiv
