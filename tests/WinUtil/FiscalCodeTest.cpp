#include <gtest/gtest.h>

#include <random>
#include <tuple>

#include "WinUtil/IdentifierRules.h"
#include "core/PersonalNumericCode.h"
#include "kivtools/WinUtil/FiscalCode.h"

namespace kiv {
namespace {

using namespace std::literals;

TEST(FiscalCode, KnownVerdicts) {
  const struct {
    TextView code;
    bool valid;
  } kCases[] = {
      {"12345674", true},
      {"12345670", false},
      {"121212125", true},
      {"RO121212125", false},
      {"121 212 125", false},
      {"100000", true},
      {"000", true},
      {"00", false},
      {"0", false},
      {"", false},
      {"0000000000", true},
      {"00000000000", false},
      {"000000000000", false},
      {"1800101221144", true},
      {"1800101221145", false},
      {"0000000000000", false},
      {"00000000000000", false},
      {"12345674\0"sv, false},
      {"1234567\xB4", false},
      {"18001012211 4", false},
  };
  for (const auto& [code, valid] : kCases) {
    EXPECT_EQ(TestCodFiscal(code), valid) << code;
  }
}

TEST(FiscalCode, AgreesWithThePlainRule) {
  for (int code = 0; code < 1'000'000; ++code) {  // every code of three to six digits
    const Text text = std::to_string(code);
    ASSERT_EQ(TestCodFiscal(text), plain::TestCodFiscal(text)) << text;
  }
  std::mt19937 random(11);
  for (int i = 0; i < 200'000; ++i) {
    Text text(random() % 16, ' ');
    for (char& character : text) {
      character = static_cast<char>(random() % 50 == 0 ? random() : '0' + random() % 10);
    }
    ASSERT_EQ(TestCodFiscal(text), plain::TestCodFiscal(text)) << text;
  }
}

TEST(FiscalCode, OnlyThirteenDigitsCountAsPersonalCodes) {
  const std::uint32_t failed = CnpFailedCount;
  std::ignore = TestCodFiscal("12345674");
  std::ignore = TestCodFiscal("180010122114x");
  EXPECT_EQ(CnpFailedCount, failed);
  std::ignore = TestCodFiscal("1800101221145");
  EXPECT_EQ(CnpFailedCount, failed + 1);
}

}  // namespace
}  // namespace kiv
