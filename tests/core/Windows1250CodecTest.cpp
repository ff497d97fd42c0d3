#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "core/Windows1250Codec.h"
#include "kivtools/Errors.h"

namespace kiv::windows1250 {
namespace {

// The plain rules that every kernel is held against.

WideText PlainToWide(TextView text) {
  WideText wide;
  for (const char byte : text.substr(0, text.find('\0'))) {
    wide.push_back(ToUnicode(static_cast<unsigned char>(byte)));
  }
  return wide;
}

Text PlainFromWide(std::u16string_view wide) {
  Text text;
  for (const char16_t unit : wide.substr(0, wide.find(u'\0'))) {
    const auto* const look = std::ranges::find(kBestFit, unit, &detail::Pair::character);
    const int other = look == kBestFit.end() ? '?' : look->byte;
    text.push_back(static_cast<char>(FromUnicode(unit).value_or(static_cast<unsigned char>(other))));
  }
  return text;
}

std::string PlainToUtf8(TextView text, DiacriticForm form) {
  std::string utf8;
  for (const char byte : text) {
    const char32_t exact = ToUnicode(static_cast<unsigned char>(byte));
    const char32_t character = form == DiacriticForm::CommaBelow ? CommaBelowForm(exact) : exact;
    if (character < 0x80) {
      utf8.push_back(static_cast<char>(character));
      continue;
    }
    if (character < 0x800) {
      utf8.push_back(static_cast<char>(0xC0U | character >> 6U));
    } else {
      utf8.push_back(static_cast<char>(0xE0U | character >> 12U));
      utf8.push_back(static_cast<char>(0x80U | (character >> 6U & 0x3FU)));
    }
    utf8.push_back(static_cast<char>(0x80U | (character & 0x3FU)));
  }
  return utf8;
}

/// The bytes, or "!" and the position from 1 of what is refused.
Text PlainFromUtf8(std::string_view utf8) {
  Text text;
  for (std::size_t at = 0; at < utf8.size();) {
    const utf8::Decoded decoded = utf8::DecodeAt(utf8, at);
    const auto byte = decoded.length == 0 ? std::nullopt : FromUnicode(CedillaForm(decoded.character));
    if (!byte) {
      return "!" + std::to_string(at + 1);
    }
    text.push_back(static_cast<char>(*byte));
    at += decoded.length;
  }
  return text;
}

Text FromUtf8OrPosition(std::string_view utf8, const Kernels& kernels) {
  try {
    return FromUtf8(utf8, kernels);
  } catch (const ConversionError& error) {
    const Text message = error.what();
    const std::size_t at = message.find("octetul ") + 8;
    return "!" + message.substr(at, message.find(' ', at) - at);
  }
}

/// A copy that ends where its memory ends and starts `offset` bytes into it, so that the sanitizers see every byte read
/// past the end and every alignment is met.
template <class Characters>
class Placed {
 public:
  using Unit = typename Characters::value_type;
  Placed(const Characters& text, std::size_t offset) : memory_(offset + text.size()), offset_(offset) {
    std::ranges::copy(text, memory_.begin() + static_cast<std::ptrdiff_t>(offset));
  }
  [[nodiscard]] std::basic_string_view<Unit> View() const {
    return {memory_.data() + offset_, memory_.size() - offset_};
  }

 private:
  std::vector<Unit> memory_;
  std::size_t offset_;
};

class Windows1250Codec : public testing::TestWithParam<const Kernels*> {
 protected:
  void SetUp() override {
    if (GetParam() == nullptr) {
      GTEST_SKIP() << "this processor has no such instructions";
    }
  }

  void Check(const Text& text, const WideText& wide, std::size_t offset) {
    const Kernels& kernels = *GetParam();
    const Placed placed(text, offset);
    ASSERT_EQ(ToWide(placed.View(), kernels), PlainToWide(text));
    for (const DiacriticForm form : {DiacriticForm::Cedilla, DiacriticForm::CommaBelow}) {
      const std::string utf8 = PlainToUtf8(text, form);
      ASSERT_EQ(ToUtf8(placed.View(), form, kernels), utf8);
      ASSERT_EQ(FromUtf8(Placed(utf8, offset).View(), kernels), text);
    }
    ASSERT_EQ(FromWide(Placed(wide, offset).View(), kernels), PlainFromWide(wide));
  }

  std::mt19937 random_{1250};
};

INSTANTIATE_TEST_SUITE_P(Kernels, Windows1250Codec, testing::Values(&kPortableKernels, VectorKernels()),
                         [](const auto& kernels) { return kernels.index == 0 ? "Portable" : "Vector"; });

TEST_P(Windows1250Codec, ConvertsAsThePlainRules) {
  // Shares of special units in a thousand: plain, a few letters, every second, all.
  for (const unsigned special : {0U, 70U, 500U, 1000U}) {
    for (std::size_t length = 0; length <= 10000; length += length < 200 ? 1 : 977) {
      Text text;
      WideText wide;
      for (std::size_t i = 0; i < length; ++i) {
        const unsigned high = 0x80 + random_() % 0x80;
        const bool isSpecial = random_() % 1000 < special;
        text.push_back(static_cast<char>(isSpecial ? high : 1 + random_() % 0x7F));
        wide.push_back(static_cast<char16_t>(!isSpecial            ? 1 + random_() % 0x7F
                                             : random_() % 4 == 0  ? random_() % 0x10000
                                             : random_() % 10 == 0 ? 0x80
                                                                   : kUnitOfByte[high]));
      }
      if (random_() % 8 == 0 && length > 0) {
        text[random_() % length] = '\0';
      }
      Check(text, wide, length < 200 ? length % 32 : 0);
      if (HasFatalFailure()) {
        FAIL() << "length " << length << ", special " << special;
      }
    }
  }
}

TEST_P(Windows1250Codec, ConvertsALetterInEveryPlace) {
  for (std::size_t length : {1U, 31U, 32U, 33U, 64U, 95U}) {
    for (std::size_t place = 0; place < length; ++place) {
      for (const unsigned byte : {0x80U, 0xAAU, 0xFFU, 0x7FU, 0x00U}) {
        Text text(length, 'a');
        WideText wide(length, u'a');
        text[place] = static_cast<char>(byte);
        wide[place] = byte == 0x7F ? u'\uFFFF' : kUnitOfByte[byte];
        Check(text, wide, place % 32);
      }
    }
  }
}

TEST_P(Windows1250Codec, RefusesMalformedUtf8WhereThePlainRuleDoes) {
  const std::string sample =
      PlainToUtf8("Factur\xE3 nr. 12 din \x84\x42ra\xBAov\x94 \x96 \xCEn \xFE\xE2\x80\xAA", DiacriticForm::CommaBelow);
  for (int round = 0; round < 20000; ++round) {
    std::string utf8;
    for (std::size_t parts = random_() % 6; parts > 0; --parts) {
      utf8 += sample.substr(random_() % sample.size(), random_() % 60);  // may cut a character
      utf8.append(random_() % 40, 'x');
    }
    if (!utf8.empty() && random_() % 2 == 0) {
      utf8[random_() % utf8.size()] = static_cast<char>(random_());
    }
    ASSERT_EQ(FromUtf8OrPosition(Placed(utf8, random_() % 32).View(), *GetParam()), PlainFromUtf8(utf8))
        << testing::PrintToString(utf8);
  }
}

}  // namespace
}  // namespace kiv::windows1250
