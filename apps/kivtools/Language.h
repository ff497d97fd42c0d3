#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

/// The program's own words. Each message stands once, in all languages side by side, where it is said:
///
///     throw InputError(Say({"{0} is a folder", "{0} este un dosar"}, name));
///
/// One that lacks a language, or whose places for values differ between them, does not compile. Data stays as it is in
/// every language: names of commands, options and columns, the keys of JSON, "valid" and "invalid", what the library
/// says.
namespace kivtools {

enum class Language : std::uint8_t { English, Romanian };

/// How the program speaks.
struct Speech {
  Language language = Language::English;
  bool diacritics = true;  ///< false where the terminal may not show them
};
/// For the whole program; set before other threads run. English where nothing is set.
void SetSpeech(Speech speech) noexcept;
[[nodiscard]] Speech CurrentSpeech() noexcept;

/// Text that may be shown: said in the user's language, or data.
class Said {
 public:
  [[nodiscard]] const std::string& Text() const noexcept { return text_; }
  // NOLINTNEXTLINE(google-explicit-constructor): it is text for whatever shows text
  operator std::string_view() const noexcept { return text_; }

 private:
  friend Said AsItIs(std::string text);
  explicit Said(std::string text) : text_(std::move(text)) {}
  std::string text_;
};

/// What no language changes: a value, a name, what the library or the system says.
inline Said AsItIs(std::string text) {
  return Said(std::move(text));
}

/// A message with places {0}, {1} and so on for so many values, each at least once in every language.
template <std::size_t Places>
class Format {
 public:
  // NOLINTNEXTLINE(google-explicit-constructor): written as {"...", "..."} where it is wanted
  consteval Format(std::string_view english, std::string_view romanian) : english_(english), romanian_(romanian) {
    Check(english);
    Check(romanian);
  }
  [[nodiscard]] constexpr std::string_view In(Language language) const noexcept {
    return language == Language::Romanian ? romanian_ : english_;
  }

 private:
  // Not constexpr: a message that comes here does not compile, and the compiler shows the name.
  static void PlacesDifferFromTheValuesGiven() {}
  static void AMessageIsEmpty() {}

  static consteval void Check(std::string_view text) {
    if (text.empty()) {
      AMessageIsEmpty();
    }
    bool seen[Places + 1] = {};
    for (std::size_t at = text.find('{'); at < text.size(); at = text.find('{', at + 1)) {
      const std::size_t place = at + 2 < text.size() && text[at + 2] == '}' ? std::size_t(text[at + 1] - '0') : Places;
      if (place >= Places) {
        PlacesDifferFromTheValuesGiven();
      } else {
        seen[place] = true;
      }
    }
    for (std::size_t place = 0; place < Places; ++place) {
      if (!seen[place]) {
        PlacesDifferFromTheValuesGiven();
      }
    }
  }

  std::string_view english_;
  std::string_view romanian_;
};

/// A message without such places.
using Phrase = Format<0>;

/// A value in a message.
class Piece {
 public:
  // NOLINTBEGIN(google-explicit-constructor): whatever has a place in a message
  Piece(std::string_view text) : text_(text) {}
  Piece(std::string text) : text_(std::move(text)) {}
  Piece(const char* text) : text_(text) {}
  Piece(const Said& said) : text_(said.Text()) {}
  Piece(const Phrase& phrase);
  Piece(std::integral auto number) : text_(std::to_string(number)) {}
  // NOLINTEND(google-explicit-constructor)
  [[nodiscard]] const std::string& Text() const noexcept { return text_; }

 private:
  std::string text_;
};

/// The pattern with its places filled, as the program speaks. What is put in stays as it is.
std::string Fill(std::string_view english, std::string_view romanian, std::initializer_list<Piece> values);

/// The message in the user's language. Example: `Say({"{0} of {1}", "{0} din {1}"}, 3, "a.csv")` is "3 of a.csv".
template <class... Values>
Said Say(const Format<sizeof...(Values)>& format, const Values&... values) {
  return AsItIs(Fill(format.In(Language::English), format.In(Language::Romanian), {Piece(values)...}));
}

/// A thing that is counted.
struct Noun {
  Phrase one;
  Phrase many;
};
inline constexpr Noun kBytes = {{"byte", "octet"}, {"bytes", "octeți"}};
inline constexpr Noun kFiles = {{"file", "fișier"}, {"files", "fișiere"}};
inline constexpr Noun kFolders = {{"folder", "dosar"}, {"folders", "dosare"}};

/// A count and what is counted. Example: 1 and kFiles give "1 file", 20 gives "20 files", in Romanian "20 de fișiere".
Said Counted(std::uint64_t count, const Noun& noun);

}  // namespace kivtools
