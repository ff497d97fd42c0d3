#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "apps/kivtools/CodePages.h"
#include "apps/kivtools/Command.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/Utf16.h"
#include "apps/kivtools/input/ForEachBlock.h"
#include "apps/kivtools/input/Input.h"
#include "kivtools/Windows1250.h"

namespace kivtools {
namespace {

constexpr std::array<std::string_view, 5> kUsualPages = {"utf-8", "windows-1250", "ibm852", "iso-8859-2",
                                                         "iso-8859-16"};
constexpr std::array<std::string_view, 2> kForms = {"comma", "cedilla"};

constexpr std::array<Option, 4> kOptions = {{
    {"from", "CP", {"the code page of what comes in", "pagina de coduri a ce intră"}, kUsualPages},
    {"to", "CP", {"the code page of what goes out", "pagina de coduri a ce iese"}, kUsualPages},
    {"lossy",
     "",
     {"put look-alikes or ? for what is damaged and for letters that it lacks",
      "pune litere apropiate sau ? pentru ce este stricat și pentru litere care îi lipsesc"}},
    {"letters",
     "FORM",
     {"write s and t in UTF-8 with a comma or a cedilla below",
      "scrie ș și ț în UTF-8 cu virgulă sau cu sedilă dedesubt"},
     kForms},
}};

constexpr Phrase kDetails = {
    "Converts standard input to standard output. Code pages have their names, such as utf-8, windows-1250, ibm852\n"
    "or iso-8859-2, or the numbers of Windows. The comma and the cedilla letters stand for one another where the\n"
    "code page has only one of them; any other letter that it lacks is refused, and so are bytes that mean\n"
    "nothing where they come from, unless --lossy is given.\n"
    "In UTF-8 the letters keep their form unless --letters comma or --letters cedilla chooses one.\n\n"
    "Example:\n"
    "  kivtools convert --from windows-1250 --to utf-8 --letters comma < vechi.txt > nou.txt\n",
    "Trece intrarea standard, convertită, la ieșirea standard. Paginile de coduri au nume, ca utf-8,\n"
    "windows-1250, ibm852 sau iso-8859-2, ori numerele din Windows. Literele cu virgulă și cele cu sedilă țin\n"
    "unele locul celorlalte unde pagina are numai un fel; orice altă literă care îi lipsește este refuzată, la\n"
    "fel octeții fără înțeles în pagina din care vin, afară de cazul că se dă --lossy.\n"
    "În UTF-8 literele își păstrează forma, dacă nu alege una --letters comma sau --letters cedilla.\n\n"
    "Exemplu:\n"
    "  kivtools convert --from windows-1250 --to utf-8 --letters comma < vechi.txt > nou.txt\n"};

constexpr std::int32_t kUtf7 = 65000;
constexpr std::int32_t kUtf8 = 65001;

std::int32_t CodePageOf(const Library& library, const Arguments& arguments, const char* option) {
  const auto text = arguments.ValueOf(option);
  if (!text) {
    throw InputError(IsMissing(std::string("--") + option + " CP"));
  }
  const std::int32_t number = ReadCodePage(*text);
  if (library.ToWide("A", number).empty()) {
    throw InputError(
        Say({"{0} is not a code page that this system knows", "{0} nu este o pagină de coduri cunoscută de sistem"},
            Shown(*text)));
  }
  return number;
}

/// What is to be done with each letter on its way to UTF-8.
using LetterForm = char32_t (*)(char32_t);

LetterForm ReadLetters(const Arguments& arguments, std::int32_t to) {
  const auto form = arguments.ValueOf("letters");
  if (!form) {
    return nullptr;
  }
  if (to != kUtf8) {
    throw InputError(Say({"\"--letters\" goes with --to utf-8 only", "\"--letters\" merge numai cu --to utf-8"}));
  }
  if (std::ranges::find(kForms, *form) == kForms.end()) {
    throw InputError(
        Say({"{0} is not a form of letters: comma or cedilla", "{0} nu este o formă a literelor: comma sau cedilla"},
            Shown(*form)));
  }
  return *form == "comma" ? kiv::windows1250::CommaBelowForm : kiv::windows1250::CedillaForm;
}

bool IsSame(Utf16View a, Utf16View b) noexcept {
  return std::ranges::equal(a, b);
}

/// Reads what comes in.
class Decoder {
 public:
  Decoder(const Library& library, std::int32_t codePage, bool lossy)
      : library_(library), codePage_(codePage), lossy_(lossy) {
    for (std::size_t byte = 0; byte < meansItself_.size(); ++byte) {
      const char text = static_cast<char>(byte);
      meansItself_[byte] = byte == 0 || (codePage == kUtf7 ? byte < 0x80 : AskWhetherCharacter({&text, 1}));
    }
  }

  /// The text, which has no character zero, in UTF-16. Throws InputError, naming the byte, where it is damaged.
  [[nodiscard]] Utf16 Decode(std::string_view text) const {
    if (codePage_ == kUtf8 && !lossy_) {
      return Utf16FromUtf8(text);
    }
    if (!lossy_) {
      RefuseDamage(text);
    }
    return library_.ToWide(text, codePage_);
  }

 private:
  /// Finds the first byte that means nothing.
  void RefuseDamage(std::string_view text) const {
    constexpr std::size_t kLongest = 4;
    for (std::size_t at = 0; at < text.size();) {
      std::size_t length = MeansItself(text[at]) ? 1 : 2;
      while (length > 1 && length <= kLongest && !IsCharacter(text.substr(at, length))) {
        ++length;
      }
      if (length > std::min(kLongest, text.size() - at)) {
        throw InputError(Say({"{0} is not code page {1}", "{0} nu este din pagina de coduri {1}"},
                             Shown(text.substr(at, 1)), codePage_));
      }
      at += length;
    }
  }

  [[nodiscard]] bool MeansItself(char byte) const noexcept { return meansItself_[static_cast<unsigned char>(byte)]; }

  /// Whether the bytes are one character. Pairs are remembered: texts have few of them, many times.
  [[nodiscard]] bool IsCharacter(std::string_view bytes) const {
    if (bytes.size() != 2) {
      return AskWhetherCharacter(bytes);
    }
    enum : std::uint8_t { kUnknown, kYes, kNo };
    std::atomic<std::uint8_t>& known =
        pairs_[static_cast<unsigned char>(bytes[0]) * 256U + static_cast<unsigned char>(bytes[1])];
    if (known == kUnknown) {
      known = AskWhetherCharacter(bytes) ? kYes : kNo;
    }
    return known == kYes;
  }

  /// Systems put U+FFFD, ASCII or the middle dot of Japanese code pages for what is no character.
  [[nodiscard]] bool AskWhetherCharacter(std::string_view bytes) const {
    constexpr std::uint16_t kMiddleDot = 0x30FB;
    const Utf16 wide = library_.ToWide(bytes, codePage_);
    if (wide.empty() || FirstCharacter(wide).size() != wide.size() || wide[0] == 0xFFFD) {
      return false;
    }
    const bool ascii = bytes.size() == 1 && (bytes[0] & 0x80) == 0;
    return ascii || (wide[0] >= 0x80 && (wide[0] != kMiddleDot || library_.FromWide(wide, codePage_) == bytes));
  }

  const Library& library_;
  std::int32_t codePage_;
  bool lossy_;
  std::array<bool, 256> meansItself_{};
  mutable std::vector<std::atomic<std::uint8_t>> pairs_ = std::vector<std::atomic<std::uint8_t>>(65536);
};

/// Writes what goes out.
class Encoder {
 public:
  Encoder(const Library& library, std::int32_t codePage, bool lossy, LetterForm letters)
      : library_(library), codePage_(codePage), lossy_(lossy), letters_(letters) {}

  /// Throws InputError, naming the letter, where the code page lacks one.
  [[nodiscard]] std::string Encode(Utf16 wide) const {
    if (codePage_ == kUtf8) {
      if (letters_ != nullptr) {
        std::ranges::transform(wide, wide.begin(), [this](auto unit) { return Unit(letters_(unit)); });
      }
      return Utf8FromUtf16(wide);
    }
    // A code page of several bytes a letter may need more room than the library gives a text; a letter always fits.
    std::string bytes = library_.FromWide(wide, codePage_);
    return IsExactly(bytes, wide) ? bytes : ByCharacter(wide);
  }

 private:
  static std::uint16_t Unit(char32_t character) noexcept { return static_cast<std::uint16_t>(character); }

  [[nodiscard]] std::string ByCharacter(Utf16View wide) const {
    std::string bytes;
    while (!wide.empty()) {
      const Utf16View first = FirstCharacter(wide);
      bytes += OneCharacter(first);
      wide = wide.subspan(first.size());
    }
    return bytes;
  }

  [[nodiscard]] std::string OneCharacter(Utf16View units) const {
    std::string bytes = library_.FromWide(units, codePage_);
    if (IsExactly(bytes, units)) {
      return bytes;
    }
    for (const LetterForm form : {kiv::windows1250::CedillaForm, kiv::windows1250::CommaBelowForm}) {
      const std::uint16_t other = Unit(form(units[0]));
      std::string otherBytes = library_.FromWide({&other, 1}, codePage_);
      if (other != units[0] && IsExactly(otherBytes, {&other, 1})) {
        return otherBytes;
      }
    }
    if (lossy_ && !bytes.empty()) {
      return bytes;
    }
    throw InputError(Say({"{0} is not in code page {1}", "{0} nu este în pagina de coduri {1}"},
                         Shown(Utf8FromUtf16(units)), codePage_));
  }

  [[nodiscard]] bool IsExactly(const std::string& bytes, Utf16View units) const {
    return IsSame(library_.ToWide(bytes, codePage_), units);
  }

  const Library& library_;
  std::int32_t codePage_;
  bool lossy_;
  LetterForm letters_;
};

/// Converts whole lines; a refusal names the line. The character zero ends what the library converts at once.
std::uint64_t ConvertLines(const Decoder& decoder, const Encoder& encoder, std::string_view text, std::string& out) {
  std::uint64_t line = 1;
  out.clear();
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of(std::string_view("\n\0", 2)), text.size() - 1);
    const bool zero = text[end] == '\0';
    try {
      out += encoder.Encode(decoder.Decode(text.substr(0, zero ? end : end + 1)));
    } catch (const InputError& error) {
      throw LineError(line, AsItIs(error.what()));
    }
    out.append(zero ? 1 : 0, '\0');
    line += text[end] == '\n' ? 1 : 0;
    text.remove_prefix(end + 1);
  }
  return line - 1;
}

int RunConvert(Session& session, const Arguments& arguments) {
  const Library& library = session.Lib();
  const std::int32_t from = CodePageOf(library, arguments, "from");
  const std::int32_t to = CodePageOf(library, arguments, "to");
  const bool lossy = arguments.Has("lossy");
  const Decoder decoder(library, from, lossy);
  const Encoder encoder(library, to, lossy, ReadLetters(arguments, to));
  Input input("-");
  const bool dropsMark = from == kUtf8 && to != kUtf8;
  BlockReader reader(input.Source(), RecordKind::Line,
                     dropsMark ? BlockReader::ByteOrderMark::Drop : BlockReader::ByteOrderMark::Keep);
  ForEachBlock<std::string>(
      reader,
      [&](std::span<char> text, std::string& out) {
        return ConvertLines(decoder, encoder, {text.data(), text.size()}, out);
      },
      [&](const std::string& out, std::uint64_t /*line*/) {
        session.out.Write(out);
        session.out.Flush();  // a person who types waits for it
      });
  return kDone;
}

constexpr Command kCommand = {"convert",
                              {"Convert text between code pages", "Convertește un text între pagini de coduri"},
                              "--from CP --to CP",
                              0,
                              0,
                              kOptions,
                              kDetails,
                              RunConvert};
const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
