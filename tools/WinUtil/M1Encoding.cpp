#include "kivtools/WinUtil/M1Encoding.h"

#include <array>

#include "platform/Random.h"

namespace kiv {
namespace {

constexpr std::size_t kDigits = 4;  // 5 to the power 4 is 625: room for any byte
constexpr unsigned kBase = 5;       // the code of a digit's character modulo this is the digit
constexpr unsigned kFirstCode = '0';
constexpr unsigned kCodesForADigit = 15;

constexpr std::array<std::uint8_t, 256> kDigitOfCode = [] {
  std::array<std::uint8_t, 256> digits{};
  for (unsigned code = 0; code < digits.size(); ++code) {
    digits[code] = static_cast<std::uint8_t>((code + 10 * kBase - kFirstCode) % kBase);
  }
  return digits;
}();

}  // namespace

Text EncodeM1String(TextView text) {
  // One random number serves the four digits of a byte.
  constexpr std::uint32_t kChoices = kCodesForADigit * kCodesForADigit * kCodesForADigit * kCodesForADigit;
  platform::Random& random = platform::random_service.Current();
  random.Restart();
  Text encoded;
  encoded.reserve(text.size() * kDigits);
  for (const char character : text) {
    unsigned rest = static_cast<unsigned char>(character);
    std::uint32_t choice = random.Below(kChoices);
    for (std::size_t i = 0; i < kDigits; ++i) {
      encoded.push_back(static_cast<char>(kFirstCode + rest % kBase + kBase * (choice % kCodesForADigit)));
      rest /= kBase;
      choice /= kCodesForADigit;
    }
  }
  return encoded;
}

Text DecodeM1String(TextView encoded) {
  if (encoded.size() % kDigits != 0) {
    throw Error("Fatal error 0x1A05007A");
  }
  Text text;
  text.reserve(encoded.size() / kDigits);
  for (std::size_t at = 0; at < encoded.size(); at += kDigits) {
    unsigned byte = 0;
    for (std::size_t i = kDigits; i > 0; --i) {
      byte = byte * kBase + kDigitOfCode[static_cast<unsigned char>(encoded[at + i - 1])];
    }
    text.push_back(static_cast<char>(byte));  // groups that no encoder wrote wrap
  }
  return text;
}

}  // namespace kiv
