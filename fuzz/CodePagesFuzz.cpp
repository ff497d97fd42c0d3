// Code-page conversion with any number: results keep to their room and end at the first zero; Windows-1250 agrees with
// its table; the kernels of this processor agree with the portable ones and with the plain rules.
#include <fuzzer/FuzzedDataProvider.h>

#include <optional>
#include <vector>

#include "core/Windows1250Codec.h"
#include "fuzz/Property.h"
#include "kivtools/WideTools.h"

namespace {

using kiv::Text;
using kiv::TextView;
using kiv::WideText;
namespace codec = kiv::windows1250;

void ConvertInAnyCodePage(FuzzedDataProvider& data, TextView text, std::u16string_view wide) {
  constexpr std::int32_t kKnown[] = {0,     1,     3,     42,    437,   852,   874,   932,   936,
                                     949,   950,   1250,  1251,  1252,  1255,  1258,  1361,  10000,
                                     20127, 20932, 28592, 28606, 50220, 51949, 54936, 65000, 65001};
  const std::int32_t codePage =
      data.ConsumeBool() ? data.PickValueInArray(kKnown) : data.ConsumeIntegral<std::int32_t>();
  const WideText decoded = kiv::StringToWideString(text, codePage);
  REQUIRE(decoded.size() <= text.size());
  REQUIRE(decoded.find(u'\0') == WideText::npos);
  const Text encoded = kiv::WideStringToString(wide, codePage);
  REQUIRE(encoded.size() <= wide.size() + 1);
  REQUIRE(encoded.find('\0') == Text::npos);
}

void ConvertWindows1250(TextView text, std::u16string_view wide) {
  const TextView upToZero = text.substr(0, text.find('\0'));
  const WideText decoded = kiv::StringToWideString(text, 1250);
  REQUIRE(decoded == codec::ToWide(text, codec::kPortableKernels));
  REQUIRE(decoded.size() == upToZero.size());
  REQUIRE(kiv::WideStringToString(decoded, 1250) == upToZero);
  const Text encoded = kiv::WideStringToString(wide, 1250);
  REQUIRE(encoded == codec::FromWide(wide, codec::kPortableKernels));
  for (std::size_t i = 0; i < encoded.size(); ++i) {
    REQUIRE(static_cast<unsigned char>(encoded[i]) == codec::kNearestByte[wide[i]]);
  }
}

std::optional<Text> TriedFromUtf8(TextView utf8, const codec::Kernels& kernels) {
  try {
    return codec::FromUtf8(utf8, kernels);
  } catch (const kiv::ConversionError&) {
    return std::nullopt;
  }
}

std::optional<Text> PlainFromUtf8(TextView utf8) {
  Text text;
  for (std::size_t at = 0; at < utf8.size();) {
    const kiv::utf8::Decoded decoded = kiv::utf8::DecodeAt(utf8, at);
    const auto byte = decoded.length == 0 ? std::nullopt : codec::FromUnicode(codec::CedillaForm(decoded.character));
    if (!byte) {
      return std::nullopt;
    }
    text.push_back(static_cast<char>(*byte));
    at += decoded.length;
  }
  return text;
}

void ConvertUtf8(TextView text) {
  for (const kiv::DiacriticForm form : {kiv::DiacriticForm::Cedilla, kiv::DiacriticForm::CommaBelow}) {
    const std::string utf8 = kiv::ToUtf8(text, form);
    REQUIRE(utf8 == codec::ToUtf8(text, form, codec::kPortableKernels));
    REQUIRE(kiv::FromUtf8(utf8) == text);
  }
  const std::optional<Text> plain = PlainFromUtf8(text);
  REQUIRE(TriedFromUtf8(text, codec::BestKernels()) == plain);
  REQUIRE(TriedFromUtf8(text, codec::kPortableKernels) == plain);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  FuzzedDataProvider data(bytes, size);
  WideText wide;
  for (auto left = data.ConsumeIntegralInRange<std::size_t>(0, 300); left > 0; --left) {
    wide.push_back(data.ConsumeBool() ? data.ConsumeIntegral<char16_t>() : data.ConsumeIntegral<std::uint8_t>());
  }
  // An allocation without a byte to spare.
  const std::vector<char> copy = data.ConsumeBytes<char>(data.ConsumeIntegralInRange<std::size_t>(0, 3000));
  const TextView text(copy.data(), copy.size());
  ConvertInAnyCodePage(data, text, wide);
  ConvertWindows1250(text, wide);
  ConvertUtf8(text);
  return 0;
}
