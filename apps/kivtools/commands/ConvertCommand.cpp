#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "apps/kivtools/Amount.h"
#include "apps/kivtools/Command.h"
#include "apps/kivtools/Shown.h"
#include "apps/kivtools/input/BlockReader.h"
#include "apps/kivtools/system/InputStream.h"
#include "kivtools/Utf8.h"
#include "kivtools/Windows1250.h"

namespace kivtools {
namespace {

constexpr std::array<Option, 3> kOptions = {{
    {"from", "CP", "the code page of what comes in"},
    {"to", "CP", "the code page of what goes out"},
    {"lossy", "", "put look-alikes or ? for letters that it lacks"},
}};

constexpr std::string_view kDetails =
    "Converts standard input to standard output. Code pages have the numbers of Windows: 1250, 852, 65001 for UTF-8.\n"
    "The comma-below letters become cedilla letters where only these exist; any other letter that the code page lacks\n"
    "is refused, unless --lossy is given.\n\n"
    "Example:\n"
    "  kivtools convert --from 1250 --to 65001 < vechi.txt > nou.txt\n";

constexpr std::int32_t kUtf8 = 65001;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t kLongestLine = std::size_t{16} * 1024 * 1024;

using Wide = std::vector<std::uint16_t>;

bool IsHigh(std::uint16_t unit) noexcept {
  return unit >= 0xD800 && unit < 0xDC00;
}

std::int32_t ReadCodePage(const Library& library, const Arguments& arguments, const char* option) {
  const auto text = arguments.ValueOf(option);
  if (!text) {
    throw InputError(std::string("--") + option + " CP is missing");
  }
  const std::int64_t number = ReadWholeNumber(*text);
  const bool known = number >= 0 && number <= 65535 && !library.ToWide("A", static_cast<std::int32_t>(number)).empty();
  if (!known) {
    throw InputError(Shown(*text) + " is not a code page that this system knows");
  }
  return static_cast<std::int32_t>(number);
}

/// Converts pieces of text without the character zero.
class Converter {
 public:
  Converter(const Library& library, const Arguments& arguments)
      : library_(library),
        from_(ReadCodePage(library, arguments, "from")),
        to_(ReadCodePage(library, arguments, "to")),
        lossy_(arguments.Has("lossy")) {}

  [[nodiscard]] bool DropsByteOrderMark() const noexcept { return from_ == kUtf8 && to_ != kUtf8; }

  [[nodiscard]] std::string Convert(std::string_view text) const {
    const Wide wide = from_ == kUtf8 ? DecodeUtf8(text) : library_.ToWide(text, from_);
    if (wide.empty() && !text.empty()) {
      throw InputError("what comes in is not code page " + std::to_string(from_));
    }
    if (to_ == kUtf8) {
      return EncodeUtf8(wide);
    }
    std::string converted = library_.FromWide(wide, to_);
    // A code page of several bytes a letter may need more room than the library gives a text; a letter always fits.
    const bool whole = library_.ToWide(converted, to_) == wide;
    return whole ? converted : ByCharacter(wide);
  }

 private:
  static Wide DecodeUtf8(std::string_view text) {
    Wide wide;
    wide.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
      const kiv::utf8::Decoded decoded = kiv::utf8::DecodeAt(text, at);
      if (decoded.length == 0) {
        throw InputError(Shown(text.substr(at, 1)) + " is not UTF-8");
      }
      const auto character = static_cast<std::uint32_t>(decoded.character);
      if (character >= 0x10000) {
        wide.push_back(static_cast<std::uint16_t>(0xD7C0 + (character >> 10U)));
        wide.push_back(static_cast<std::uint16_t>(0xDC00 + (character & 0x3FFU)));
      } else {
        wide.push_back(static_cast<std::uint16_t>(character));
      }
      at += decoded.length;
    }
    return wide;
  }

  /// The units of the character at the front.
  static std::span<const std::uint16_t> FirstOf(std::span<const std::uint16_t> wide) {
    return wide.first(IsHigh(wide[0]) && wide.size() > 1 ? 2 : 1);
  }

  static std::string EncodeUtf8(std::span<const std::uint16_t> wide) {
    std::string utf8;
    utf8.reserve(wide.size() + wide.size() / 4);
    for (; !wide.empty(); wide = wide.subspan(FirstOf(wide).size())) {
      const auto first = FirstOf(wide);
      const std::uint32_t character =
          first.size() == 1 ? first[0] : 0x10000U + ((first[0] & 0x3FFU) << 10U) + (first[1] & 0x3FFU);
      const unsigned extra = character < 0x80 ? 0 : character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
      constexpr std::array<unsigned, 4> kLeads = {0, 0xC0, 0xE0, 0xF0};
      utf8.push_back(static_cast<char>(kLeads[extra] | (character >> (6 * extra))));
      for (unsigned left = extra; left > 0; --left) {
        utf8.push_back(static_cast<char>(0x80U | ((character >> (6 * (left - 1))) & 0x3FU)));
      }
    }
    return utf8;
  }

  [[nodiscard]] std::string ByCharacter(std::span<const std::uint16_t> wide) const {
    std::string text;
    for (; !wide.empty(); wide = wide.subspan(FirstOf(wide).size())) {
      text += OneCharacter(FirstOf(wide));
    }
    return text;
  }

  [[nodiscard]] std::string OneCharacter(std::span<const std::uint16_t> units) const {
    const std::string bytes = library_.FromWide(units, to_);
    if (IsExactly(bytes, units)) {
      return bytes;
    }
    const auto cedilla = static_cast<std::uint16_t>(kiv::windows1250::CedillaForm(units[0]));
    const std::string other = library_.FromWide({&cedilla, 1}, to_);
    if (cedilla != units[0] && IsExactly(other, {&cedilla, 1})) {
      return other;
    }
    if (lossy_ && !bytes.empty()) {
      return bytes;
    }
    throw InputError(Shown(EncodeUtf8(units)) + " is not in code page " + std::to_string(to_));
  }

  [[nodiscard]] bool IsExactly(const std::string& bytes, std::span<const std::uint16_t> units) const {
    const Wide back = library_.ToWide(bytes, to_);
    return std::equal(back.begin(), back.end(), units.begin(), units.end());
  }

  const Library& library_;
  std::int32_t from_;
  std::int32_t to_;
  bool lossy_;
};

/// Converts whole lines; a refusal names the line. The character zero ends what the library converts at once.
void ConvertLines(const Converter& converter, std::string_view lines, std::uint64_t& line, Output& out) {
  while (!lines.empty()) {
    const std::size_t end = std::min(lines.find_first_of(std::string_view("\n\0", 2)), lines.size() - 1);
    const bool zero = lines[end] == '\0';
    try {
      out.Write(converter.Convert(lines.substr(0, zero ? end : end + 1)));
    } catch (const InputError& error) {
      throw InputError("line " + std::to_string(line) + ": " + error.what());
    }
    out.Write(zero ? std::string_view("\0", 1) : std::string_view());
    line += lines[end] == '\n' ? 1 : 0;
    lines.remove_prefix(end + 1);
  }
}

int RunConvert(Session& session, const Arguments& arguments) {
  const Converter converter(session.Lib(), arguments);
  auto stream = InputStream::Standard();
  Progress progress(stream.Size());
  BlockReader reader([&](char* into, std::size_t capacity) {
    const std::size_t count = stream.Read(into, capacity);
    progress.Advance(count);
    return count;
  });
  bool start = converter.DropsByteOrderMark();
  std::uint64_t line = 1;
  for (bool more = true; more;) {
    more = reader.ReadMore();
    std::string_view window(reader.Window().data(), reader.Window().size());
    const std::size_t end = more ? window.rfind('\n') + 1 : window.size();
    if (window.size() - end > kLongestLine) {
      throw InputError("line " + std::to_string(line) + " has more than 16 MiB");
    }
    window = window.substr(0, end);
    const bool marked = start && window.starts_with(kByteOrderMark);
    start = start && window.empty();
    ConvertLines(converter, window.substr(marked ? kByteOrderMark.size() : 0), line, session.out);
    reader.Consume(end);
  }
  return kDone;
}

constexpr Command kCommand = {
    "convert", "Convert text between code pages", "--from CP --to CP", 0, 0, kOptions, kDetails, RunConvert};

const Registration kRegistered(kCommand);

}  // namespace
}  // namespace kivtools
