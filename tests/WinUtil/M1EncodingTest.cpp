#include <gtest/gtest.h>

#include <array>

#include "Expect.h"
#include "kivtools/WinUtil/M1Encoding.h"
#include "kivtools/c/M1Encoding.h"

namespace kiv {
namespace {

Text AllBytes() {
  Text all;
  for (int byte = 0; byte < 256; ++byte) {
    all.push_back(static_cast<char>(byte));
  }
  return all;
}

TEST(M1Encoding, EncodesEveryDigitWithEveryCharacterAboutEquallyOften) {
  constexpr int kRounds = 400;
  std::array<int, 256> uses{};
  const Text all = AllBytes();
  Text before;
  for (int round = 0; round < kRounds; ++round) {
    const Text encoded = EncodeM1String(all);
    ASSERT_EQ(encoded.size(), 4 * all.size());
    ASSERT_EQ(DecodeM1String(encoded), all);
    ASSERT_NE(encoded, std::exchange(before, encoded));
    for (std::size_t byte = 0; byte < all.size(); ++byte) {
      std::size_t value = 0;
      for (std::size_t i = 4; i > 0; --i) {
        const char character = encoded[4 * byte + i - 1];
        ++uses[static_cast<unsigned char>(character)];
        value = value * 5 + static_cast<std::size_t>(character - '0') % 5;
      }
      ASSERT_EQ(value, byte);
    }
  }
  std::array<int, 5> ofDigit{};
  for (std::size_t code = '0'; code <= 'z'; ++code) {
    ofDigit[(code - '0') % 5] += uses[code];
  }
  EXPECT_EQ(ofDigit[0] + ofDigit[1] + ofDigit[2] + ofDigit[3] + ofDigit[4], kRounds * 1024) << "no other character";
  for (std::size_t code = '0'; code <= 'z'; ++code) {
    EXPECT_NEAR(uses[code] * 15.0 / ofDigit[(code - '0') % 5], 1.0, 0.1) << code;
  }
}

TEST(M1Encoding, DecodesAnyCharacters) {
  const struct {
    TextView encoded;
    TextView text;
  } kCases[] = {
      {"", ""},
      {"0000", TextView("\0", 1)},
      {"05:?", TextView("\0", 1)},
      {"1000", "\x01"},
      {"0100", "\x05"},
      {"0010", "\x19"},
      {"0001", "\x7D"},
      {"++,+", "\x19"},     // below the encoder's range: 43 is the digit 0, 44 the digit 1
      {"4444", "\x70"},     // 624 wraps
      {"\xFF+++", "\x02"},  // codes count from 0 to 255: (255 - 48) mod 5
      {TextView("\0+++", 4), "\x02"},
  };
  for (const auto& [encoded, text] : kCases) {
    EXPECT_EQ(DecodeM1String(encoded), text) << encoded;
  }
  for (const TextView encoded : {"0", "00", "000", "00000"}) {
    ExpectError<Error>([encoded] { return DecodeM1String(encoded); }, "Fatal error 0x1A05007A");
  }
}

TEST(M1Encoding, ThroughTheCInterface) {
  std::array<char, 16> encoded{};
  std::array<char, 16> text{};
  EXPECT_EQ(KivEncodeM1String("lei", 3, encoded.data(), encoded.size()), 12);
  EXPECT_EQ(KivDecodeM1String(encoded.data(), 12, text.data(), text.size()), 3);
  EXPECT_STREQ(text.data(), "lei");
  EXPECT_EQ(KivDecodeM1String(encoded.data(), 11, text.data(), text.size()), -KIV_ERROR_GENERAL);
}

}  // namespace
}  // namespace kiv
