// Windows-1250 to UTF-16, back, and to UTF-8 and back. Peers: the converters of ICU and iconv, opened once and writing
// into a buffer that they are given; this library returns a new string each time, as "icu-string" does. Floors: a
// widening copy, a copy.
#include <benchmark/benchmark.h>
#include <iconv.h>
#include <unicode/ucnv.h>

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <random>
#include <vector>

#include "core/Windows1250Codec.h"
#include "kivtools/WideTools.h"

namespace {

using kiv::Text;
using kiv::TextView;
using kiv::WideText;
using kiv::windows1250::kPortableKernels;

constexpr std::size_t kLong = 1U << 20U;
constexpr std::size_t kShort = 32;

/// Lower-case words; `percent` of the letters are Romanian diacritics.
Text Sample(std::size_t length, unsigned percent) {
  std::mt19937 random(1250);
  constexpr TextView kDiacritics = "\xE3\xE3\xE3\xE2\xEE\xEE\xBA\xBA\xFE\xFE\xCE\xAA";
  constexpr TextView kPlain = "aaabcdeeeefghiiijklmnnooprrsttuuvz     ,.";
  Text text;
  while (text.size() < length) {
    const TextView from = random() % 100 < percent ? kDiacritics : kPlain;
    text.push_back(from[random() % from.size()]);
  }
  return text;
}

/// What is converted: one text of 1 MiB or its pieces of 32 bytes.
struct Input {
  const char* name;
  unsigned percent;
  std::size_t piece;
};
constexpr Input kInputs[] = {{"romanian", 7, kLong}, {"ascii", 0, kLong}, {"short", 7, kShort}};

class Peer {
 public:
  Peer() {
    UErrorCode status = U_ZERO_ERROR;
    icu_ = ucnv_open("windows-1250", &status);
    icuUtf8_ = ucnv_open("UTF-8", &status);
    toWide_ = iconv_open("UTF-16LE", "CP1250");
    toText_ = iconv_open("CP1250", "UTF-16LE");
    toUtf8_ = iconv_open("UTF-8", "CP1250");
    fromUtf8_ = iconv_open("CP1250", "UTF-8");
    wide_.resize(kLong + 1);
    bytes_.resize(3 * kLong + 1);
  }

  std::u16string_view IcuToWide(TextView text) {
    UErrorCode status = U_ZERO_ERROR;
    const auto length = ucnv_toUChars(icu_, wide_.data(), Size(wide_), text.data(), Size(text), &status);
    return {wide_.data(), static_cast<std::size_t>(length)};
  }
  TextView IcuToText(std::u16string_view wide) {
    UErrorCode status = U_ZERO_ERROR;
    const auto length = ucnv_fromUChars(icu_, bytes_.data(), Size(bytes_), wide.data(), Size(wide), &status);
    return {bytes_.data(), static_cast<std::size_t>(length)};
  }
  TextView IcuToUtf8(TextView text) { return IcuBetween(icuUtf8_, icu_, text); }
  TextView IcuFromUtf8(TextView utf8) { return IcuBetween(icu_, icuUtf8_, utf8); }

  std::u16string_view IconvToWide(TextView text) {
    return {wide_.data(), Iconv(toWide_, text.data(), text.size(), wide_.data(), 2 * wide_.size()) / 2};
  }
  TextView IconvToText(std::u16string_view wide) {
    return {bytes_.data(), Iconv(toText_, wide.data(), 2 * wide.size(), bytes_.data(), bytes_.size())};
  }
  TextView IconvToUtf8(TextView text) {
    return {bytes_.data(), Iconv(toUtf8_, text.data(), text.size(), bytes_.data(), bytes_.size())};
  }
  TextView IconvFromUtf8(TextView utf8) {
    return {bytes_.data(), Iconv(fromUtf8_, utf8.data(), utf8.size(), bytes_.data(), bytes_.size())};
  }

  std::u16string_view WideningCopy(TextView text) {
    char16_t* const to = wide_.data();
    for (std::size_t i = 0; i < text.size(); ++i) {
      to[i] = static_cast<unsigned char>(text[i]);
    }
    return {wide_.data(), text.size()};
  }
  TextView NarrowingCopy(std::u16string_view wide) {
    char* const to = bytes_.data();
    for (std::size_t i = 0; i < wide.size(); ++i) {
      to[i] = static_cast<char>(wide[i]);
    }
    return {bytes_.data(), wide.size()};
  }
  TextView Copy(TextView text) {
    std::memcpy(bytes_.data(), text.data(), text.size());
    return {bytes_.data(), text.size()};
  }

 private:
  template <class Characters>
  static std::int32_t Size(const Characters& characters) {
    return static_cast<std::int32_t>(characters.size());
  }

  TextView IcuBetween(UConverter* to, UConverter* from, TextView text) {
    UErrorCode status = U_ZERO_ERROR;
    char* out = bytes_.data();
    const char* in = text.data();
    UChar pivot[1024];
    UChar* pivotFrom = pivot;
    UChar* pivotTo = pivot;
    ucnv_convertEx(to, from, &out, bytes_.data() + bytes_.size(), &in, text.data() + text.size(), pivot, &pivotFrom,
                   &pivotTo, pivot + std::size(pivot), true, true, &status);
    return {bytes_.data(), static_cast<std::size_t>(out - bytes_.data())};
  }

  static std::size_t Iconv(iconv_t descriptor, const void* in, std::size_t length, void* out, std::size_t room) {
    char* from = const_cast<char*>(static_cast<const char*>(in));
    char* to = static_cast<char*>(out);
    const std::size_t whole = room;
    iconv(descriptor, &from, &length, &to, &room);
    return whole - room;
  }

  UConverter* icu_;
  UConverter* icuUtf8_;
  iconv_t toWide_;
  iconv_t toText_;
  iconv_t toUtf8_;
  iconv_t fromUtf8_;
  std::u16string wide_;
  Text bytes_;
};

Peer& ThePeer() {
  static Peer peer;
  return peer;
}

/// Registers one contender after its result has been compared with the library's.
template <class Pieces, class Convert, class Expected>
void Register(const char* what, const Input& input, const char* who, const Pieces& pieces, Convert convert,
              Expected expected, bool compare = true) {
  for (const auto& piece : pieces) {
    if (compare && convert(piece) != expected(piece)) {
      std::cerr << "CodePage/" << what << '-' << input.name << '/' << who << ": another result\n";
      std::exit(1);
    }
  }
  const Text name = Text("CodePage/") + what + '-' + input.name + '/' + who;
  benchmark::RegisterBenchmark(name.c_str(), [&pieces, convert](benchmark::State& state) {
    std::size_t bytes = 0;
    std::size_t at = 0;
    for (auto _ : state) {
      const auto& piece = pieces[at];
      at = at + 1 == pieces.size() ? 0 : at + 1;
      benchmark::DoNotOptimize(convert(piece).data());
      bytes += piece.size();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
  });
}

template <class Whole>
std::vector<Whole> Pieces(const Whole& whole, std::size_t piece) {
  std::vector<Whole> pieces;
  for (std::size_t at = 0; at < std::min<std::size_t>(whole.size(), 1024 * piece); at += piece) {
    pieces.push_back(whole.substr(at, piece));
  }
  return pieces;
}

void RegisterInput(const Input& input) {
  const Text whole = Sample(kLong, input.percent);
  static std::vector<std::vector<Text>> texts;
  static std::vector<std::vector<WideText>> wides;
  texts.reserve(2 * std::size(kInputs));
  wides.reserve(std::size(kInputs));
  const auto& text = texts.emplace_back(Pieces(whole, input.piece));
  auto& utf8 = texts.emplace_back();
  auto& wide = wides.emplace_back();
  for (const Text& piece : text) {
    wide.push_back(kiv::windows1250::ToWide(piece));
    utf8.push_back(kiv::ToUtf8(piece));
  }
  const bool ascii = input.percent == 0;

  const auto toWide = [](TextView in) { return kiv::StringToWideString(in, 1250); };
  Register("decode", input, "kiv", text, toWide, toWide);
  Register(
      "decode", input, "portable", text, [](TextView in) { return kiv::windows1250::ToWide(in, kPortableKernels); },
      toWide);
  Register(
      "decode", input, "icu", text, [](TextView in) { return ThePeer().IcuToWide(in); }, toWide);
  Register(
      "decode", input, "icu-string", text, [](TextView in) { return WideText(ThePeer().IcuToWide(in)); }, toWide);
  Register(
      "decode", input, "iconv", text, [](TextView in) { return ThePeer().IconvToWide(in); }, toWide);
  Register(
      "decode", input, "floor", text, [](TextView in) { return ThePeer().WideningCopy(in); }, toWide, ascii);

  const auto toText = [](std::u16string_view in) { return kiv::WideStringToString(in, 1250); };
  Register("encode", input, "kiv", wide, toText, toText);
  Register(
      "encode", input, "portable", wide,
      [](std::u16string_view in) { return kiv::windows1250::FromWide(in, kPortableKernels); }, toText);
  Register(
      "encode", input, "icu", wide, [](std::u16string_view in) { return ThePeer().IcuToText(in); }, toText);
  Register(
      "encode", input, "iconv", wide, [](std::u16string_view in) { return ThePeer().IconvToText(in); }, toText);
  Register(
      "encode", input, "floor", wide, [](std::u16string_view in) { return ThePeer().NarrowingCopy(in); }, toText,
      ascii);

  const auto toUtf8 = [](TextView in) { return kiv::ToUtf8(in); };
  Register("toUtf8", input, "kiv", text, toUtf8, toUtf8);
  Register(
      "toUtf8", input, "portable", text,
      [](TextView in) { return kiv::windows1250::ToUtf8(in, kiv::DiacriticForm::Cedilla, kPortableKernels); }, toUtf8);
  Register(
      "toUtf8", input, "icu", text, [](TextView in) { return ThePeer().IcuToUtf8(in); }, toUtf8);
  Register(
      "toUtf8", input, "iconv", text, [](TextView in) { return ThePeer().IconvToUtf8(in); }, toUtf8);
  Register(
      "toUtf8", input, "floor", text, [](TextView in) { return ThePeer().Copy(in); }, toUtf8, ascii);

  const auto fromUtf8 = [](TextView in) { return kiv::FromUtf8(in); };
  Register("fromUtf8", input, "kiv", utf8, fromUtf8, fromUtf8);
  Register(
      "fromUtf8", input, "portable", utf8, [](TextView in) { return kiv::windows1250::FromUtf8(in, kPortableKernels); },
      fromUtf8);
  Register(
      "fromUtf8", input, "icu", utf8, [](TextView in) { return ThePeer().IcuFromUtf8(in); }, fromUtf8);
  Register(
      "fromUtf8", input, "iconv", utf8, [](TextView in) { return ThePeer().IconvFromUtf8(in); }, fromUtf8);
  Register(
      "fromUtf8", input, "floor", utf8, [](TextView in) { return ThePeer().Copy(in); }, fromUtf8, ascii);
}

const bool kRegistered = [] {
  for (const Input& input : kInputs) {
    RegisterInput(input);
  }
  return true;
}();

}  // namespace
