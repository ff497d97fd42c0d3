// RoText undoes the escaping of every letter, MaskReplace agrees with its two-state description, and nothing else than
// a name without a value is refused.
#include <fuzzer/FuzzedDataProvider.h>

#include <optional>

#include "fuzz/Property.h"
#include "kivtools/WinUtil/Transliteration.h"

namespace {

using kiv::Text;
using kiv::TextView;

Text Escaped(TextView text) {
  constexpr TextView kLetters = "\xE3\xE2\xEE\xBA\xFE\xC3\xC2\xCE\xAA\xDE@";
  constexpr TextView kEscapes = "ahistAHIST@";
  Text escaped;
  for (const char character : text) {
    const std::size_t at = kLetters.find(character);
    escaped += at == TextView::npos ? Text(1, character) : Text{'@', kEscapes[at]};
  }
  return escaped;
}

Text Lower(TextView text) {
  Text lower(text);
  for (char& character : lower) {
    character = character >= 'A' && character <= 'Z' ? static_cast<char>(character + 32) : character;
  }
  return lower;
}

/// The text, or nothing where a matching name has no value.
std::optional<Text> PlainMaskReplace(TextView mask, const kiv::StringList& pairs) {
  Text text;
  Text name;
  bool inName = false;
  for (const char character : mask) {
    if (character != '%') {
      (inName ? name : text).push_back(character);
    } else if (!inName) {
      inName = true;
      name.clear();
    } else {
      inName = false;
      std::optional<Text> value;
      for (std::size_t i = 0; i < pairs.size(); i += 2) {
        if (Lower(pairs[i]) == Lower(name)) {
          if (i + 1 == pairs.size()) {
            return std::nullopt;
          }
          value = pairs[i + 1];
        }
      }
      text += value ? *value : "%" + name + "%";
    }
  }
  return text;
}

std::optional<Text> MaskReplace(TextView mask, const kiv::StringList& pairs) {
  try {
    return kiv::MaskReplace(mask, pairs);
  } catch (const kiv::Error&) {
    return std::nullopt;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  FuzzedDataProvider data(bytes, size);
  kiv::StringList pairs;
  for (auto left = data.ConsumeIntegralInRange<std::size_t>(0, 7); left > 0; --left) {
    pairs.push_back(data.ConsumeRandomLengthString(4));
  }
  const Text text = data.ConsumeRemainingBytesAsString();
  REQUIRE(kiv::RoText(Escaped(text)) == text);
  REQUIRE(kiv::RoText(text).size() <= text.size());
  REQUIRE(kiv::RoToEn(text).size() == text.size());
  REQUIRE(kiv::RoToEn(text).find('?') == Text::npos);
  REQUIRE(MaskReplace(text, pairs) == PlainMaskReplace(text, pairs));
  return 0;
}
