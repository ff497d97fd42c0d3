#include "apps/kivtools/Language.h"

#include <algorithm>
#include <array>

namespace kivtools {
namespace {

constinit Speech speech;

struct Letter {
  std::string_view written;
  std::string_view plain;
};
constexpr std::array<Letter, 12> kLetters = {{{"ă", "a"},
                                              {"â", "a"},
                                              {"î", "i"},
                                              {"ș", "s"},
                                              {"ț", "t"},
                                              {"Ă", "A"},
                                              {"Â", "A"},
                                              {"Î", "I"},
                                              {"Ș", "S"},
                                              {"Ț", "T"},
                                              {"„", "\""},
                                              {"”", "\""}}};

/// Appends a part of a message.
void AppendWords(std::string& out, std::string_view words) {
  if (speech.diacritics) {
    out += words;
    return;
  }
  while (!words.empty()) {
    const auto* const letter =
        std::ranges::find_if(kLetters, [words](const Letter& known) { return words.starts_with(known.written); });
    const bool known = letter != kLetters.end();
    out += known ? letter->plain : words.substr(0, 1);
    words.remove_prefix(known ? letter->written.size() : 1);
  }
}

}  // namespace

void SetSpeech(Speech wanted) noexcept {
  speech = wanted;
}

Speech CurrentSpeech() noexcept {
  return speech;
}

Piece::Piece(const Phrase& phrase) : text_(Say(phrase)) {}

std::string Fill(std::string_view english, std::string_view romanian, std::initializer_list<Piece> values) {
  std::string_view rest = speech.language == Language::Romanian ? romanian : english;
  std::string text;
  for (std::size_t at = rest.find('{'); at < rest.size(); at = rest.find('{')) {
    AppendWords(text, rest.substr(0, at));
    text += values.begin()[rest[at + 1] - '0'].Text();
    rest.remove_prefix(at + 3);
  }
  AppendWords(text, rest);
  return text;
}

Said Counted(std::uint64_t count, const Noun& noun) {
  if (count == 1) {
    return Say({"{0} {1}", "{0} {1}"}, count, noun.one);
  }
  // From twenty on, Romanian puts "de" between; the two last digits decide.
  const bool bare = count == 0 || (count % 100 > 0 && count % 100 < 20);
  return bare ? Say({"{0} {1}", "{0} {1}"}, count, noun.many) : Say({"{0} {1}", "{0} de {1}"}, count, noun.many);
}

}  // namespace kivtools
