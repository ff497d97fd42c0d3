#include <gtest/gtest.h>

#include <array>
#include <utility>

#include "Expect.h"
#include "kivtools/WinUtil/M1Encoding.h"
#include "platform/Random.h"

namespace kiv {
namespace {

Text AllBytes() {
  Text all;
  for (int byte = 0; byte < 256; ++byte) {
    all.push_back(static_cast<char>(byte));
  }
  return all;
}

/// Counts through the numbers that it is asked for, from 0 on at every start.
class Counting final : public platform::Random {
 public:
  void Restart() override { next_ = 0; }
  std::uint32_t Below(std::uint32_t count) override { return next_++ % count; }

 private:
  std::uint32_t next_ = 0;
  Replacement<platform::Random> inUse_{platform::random_service, *this};
};

TEST(M1Encoding, WritesEachDigitWithEachOfItsCharactersEquallyOften) {
  const Counting random;
  constexpr std::size_t kChoices = 50'625;  // 15 to the power 4
  const struct {
    char byte;
    std::array<unsigned, 4> digits;  // the least one first
  } kCases[] = {{'\0', {0, 0, 0, 0}},
                {'\x9B', {0, 1, 1, 1}},
                {'\xFF', {0, 1, 0, 2}},
                {'\x7C', {4, 4, 4, 0}},
                {'C', {2, 3, 2, 0}}};
  for (const auto& [byte, digits] : kCases) {
    const Text encoded = EncodeM1String(Text(kChoices, byte));
    ASSERT_EQ(encoded.size(), 4 * kChoices);
    for (std::size_t place = 0; place < 4; ++place) {
      std::array<std::size_t, 256> uses{};
      for (std::size_t i = place; i < encoded.size(); i += 4) {
        ++uses[static_cast<unsigned char>(encoded[i])];
      }
      for (unsigned choice = 0; choice < 15; ++choice) {
        EXPECT_EQ(uses[48 + digits[place] + 5 * choice], kChoices / 15) << place << ", " << choice;
      }
    }
  }
}

TEST(M1Encoding, GivesTheTextBackAndDiffersEachTimeByTheClock) {
  const Text all = AllBytes();
  Text before;
  for (int round = 0; round < 10; ++round) {
    const Text encoded = EncodeM1String(all);
    EXPECT_EQ(DecodeM1String(encoded), all);
    EXPECT_NE(encoded, std::exchange(before, encoded));
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

}  // namespace
}  // namespace kiv
