#include "kivtools/WinUtil/Transliteration.h"

#include <algorithm>
#include <array>

#include "kivtools/Ascii.h"

namespace kiv {
namespace {

using namespace literals;

struct Diacritic {
  TextLiteral letter;
  char plain;
  char escape;
};

constexpr Diacritic kDiacritics[] = {
    {"ă"_ro, 'a', 'a'}, {"â"_ro, 'a', 'h'}, {"î"_ro, 'i', 'i'}, {"ş"_ro, 's', 's'}, {"ţ"_ro, 't', 't'},
    {"Ă"_ro, 'A', 'A'}, {"Â"_ro, 'A', 'H'}, {"Î"_ro, 'I', 'I'}, {"Ş"_ro, 'S', 'S'}, {"Ţ"_ro, 'T', 'T'},
};

/// One character for each byte.
using ByteTable = std::array<char, 256>;

constexpr std::size_t Index(char byte) {
  return static_cast<unsigned char>(byte);
}

constexpr ByteTable kPlain = [] {
  ByteTable plain{};
  for (std::size_t byte = 0; byte < plain.size(); ++byte) {
    plain[byte] = static_cast<char>(byte);
  }
  for (const Diacritic& diacritic : kDiacritics) {
    plain[Index(*diacritic.letter.data())] = diacritic.plain;
  }
  plain['?'] = 't';  // a ţ that an earlier conversion lost; hosts rely on it for every question mark
  return plain;
}();

constexpr char kNoEscape = '\0';

constexpr ByteTable kEscaped = [] {
  ByteTable escaped{};
  for (const Diacritic& diacritic : kDiacritics) {
    escaped[Index(diacritic.escape)] = *diacritic.letter.data();
  }
  escaped['@'] = '@';
  return escaped;
}();

bool SameName(TextView left, TextView right) {
  return std::ranges::equal(left, right, {}, ascii::ToLower<char>, ascii::ToLower<char>);
}

/// The value of a name, null where there is none. The last of several equal names counts.
const Text* FindValue(TextView name, const StringList& pairs) {
  for (std::size_t past = (pairs.size() + 1) / 2 * 2; past > 0; past -= 2) {
    const Text& key = pairs[past - 2];
    if (SameName(key, name)) {
      if (past > pairs.size()) {
        throw Error("MaskReplace: numele \"" + key + "\" nu are valoare");
      }
      return &pairs[past - 1];
    }
  }
  return nullptr;
}

}  // namespace

Text RoToEn(TextView text) {
  Text plain(text);
  for (char& byte : plain) {
    byte = kPlain[Index(byte)];
  }
  return plain;
}

Text RoText(TextView text) {
  Text letters;
  letters.reserve(text.size());
  while (true) {
    const std::size_t escape = text.find('@');
    letters.append(text.substr(0, escape));
    if (escape == TextView::npos || escape + 1 == text.size()) {
      return letters;
    }
    if (const char letter = kEscaped[Index(text[escape + 1])]; letter != kNoEscape) {
      letters.push_back(letter);
    }
    text.remove_prefix(escape + 2);
  }
}

Text CharReplace(TextView text, char from, char to) {
  Text replaced(text);
  std::ranges::replace(replaced, from, to);
  return replaced;
}

Text MaskReplace(TextView mask, const StringList& pairs) {
  Text filled;
  while (true) {
    const std::size_t opening = mask.find('%');
    filled.append(mask.substr(0, opening));
    const std::size_t closing = opening == TextView::npos ? opening : mask.find('%', opening + 1);
    if (closing == TextView::npos) {
      return filled;
    }
    const Text* const value = FindValue(mask.substr(opening + 1, closing - opening - 1), pairs);
    filled.append(value != nullptr ? TextView(*value) : mask.substr(opening, closing - opening + 1));
    mask.remove_prefix(closing + 1);
  }
}

}  // namespace kiv
