#include "platform/CodePages.h"

#include <iconv.h>
#include <langinfo.h>
#include <locale.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <charconv>
#include <span>

#include "core/Windows1250Codec.h"

namespace kiv::platform {
namespace {

constexpr std::uint32_t kWindows1250 = 1250;
constexpr std::uint32_t kUtf8 = 65001;
constexpr std::uint32_t kAscii = 20127;
constexpr const char* kUtf16 = std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE";

/// The code pages that go through iconv, under its names. It is a closed list, because converters that nobody reads
/// Romanian business texts with are the ones that have had memory faults.
constexpr struct {
  std::uint32_t number;
  const char* name;
} kConverters[] = {
    {437, "CP437"},        {737, "CP737"},         {775, "CP775"},         {850, "CP850"},
    {852, "CP852"},        {855, "CP855"},         {857, "CP857"},         {858, "CP858"},
    {860, "CP860"},        {861, "CP861"},         {862, "CP862"},         {863, "CP863"},
    {864, "CP864"},        {865, "CP865"},         {866, "CP866"},         {869, "CP869"},
    {874, "CP874"},        {932, "CP932"},         {936, "CP936"},         {949, "CP949"},
    {950, "CP950"},        {1251, "CP1251"},       {1252, "CP1252"},       {1253, "CP1253"},
    {1254, "CP1254"},      {1255, "CP1255"},       {1256, "CP1256"},       {1257, "CP1257"},
    {1258, "CP1258"},      {1361, "JOHAB"},        {10000, "MACINTOSH"},   {10007, "MAC-CYRILLIC"},
    {20127, "US-ASCII"},   {20866, "KOI8-R"},      {20932, "EUC-JP"},      {21866, "KOI8-U"},
    {28591, "ISO-8859-1"}, {28592, "ISO-8859-2"},  {28593, "ISO-8859-3"},  {28594, "ISO-8859-4"},
    {28595, "ISO-8859-5"}, {28596, "ISO-8859-6"},  {28597, "ISO-8859-7"},  {28598, "ISO-8859-8"},
    {28599, "ISO-8859-9"}, {28603, "ISO-8859-13"}, {28605, "ISO-8859-15"}, {28606, "ISO-8859-16"},
    {51932, "EUC-JP"},     {51949, "EUC-KR"},      {54936, "GB18030"},     {65000, "UTF-7"},
    {65001, "UTF-8"},
};

/// The numbers 0, 1 and 3 mean the system's own narrow code page.
std::uint32_t Resolved(std::uint32_t codePage) {
  return codePage == 0 || codePage == 1 || codePage == 3 ? code_pages_service.Current().AnsiCodePage() : codePage;
}

const char* ConverterName(std::uint32_t codePage) {
  const auto* const found = std::ranges::find(kConverters, codePage, [](const auto& entry) { return entry.number; });
  return found == std::end(kConverters) ? nullptr : found->name;
}

/// One conversion through iconv into a buffer that cannot grow.
class Converter {
 public:
  enum class Stop { AtEnd, NoRoom, BadInput };

  Converter(const char* to, const char* from, std::span<char> room)
      : descriptor_(iconv_open(to, from)), next_(room.data()), left_(room.size()) {}
  ~Converter() {
    if (IsOpen()) {
      iconv_close(descriptor_);
    }
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  /// False where the system has no such converter.
  [[nodiscard]] bool IsOpen() const { return descriptor_ != reinterpret_cast<iconv_t>(-1); }

  /// Converts as far as it can, takes that away from the input and says why it stopped.
  Stop Feed(std::string_view& input) {
    char* at = const_cast<char*>(input.data());  // iconv's declaration lacks the const; it only reads
    std::size_t length = input.size();
    const Stop stop = Call(&at, &length);
    input.remove_prefix(input.size() - length);
    return stop;
  }

  /// Writes what a converter with states still holds back.
  Stop Flush() { return Call(nullptr, nullptr); }

  /// Writes bytes of the target encoding themselves.
  Stop Put(std::string_view bytes) {
    if (bytes.size() > left_) {
      return Stop::NoRoom;
    }
    next_ = std::ranges::copy(bytes, next_).out;
    left_ -= bytes.size();
    return Stop::AtEnd;
  }

  /// The bytes of room that are still free.
  [[nodiscard]] std::size_t Left() const { return left_; }

 private:
  Stop Call(char** at, std::size_t* length) {
    if (iconv(descriptor_, at, length, &next_, &left_) != static_cast<std::size_t>(-1)) {
      return Stop::AtEnd;
    }
    return errno == E2BIG ? Stop::NoRoom : Stop::BadInput;
  }

  iconv_t descriptor_;
  char* next_;
  std::size_t left_;
};

template <class Unit>
std::string_view BytesOf(const Unit* units, std::size_t count) {
  return {reinterpret_cast<const char*>(units), count * sizeof(Unit)};
}

/// How many bytes of malformed UTF-8 one U+FFFD replaces: the lead byte with the continuation bytes that still fit.
std::size_t MalformedUtf8Length(TextView text) {
  const auto byteAt = [text](std::size_t index) { return static_cast<unsigned char>(text[index]); };
  const auto continues = [&](std::size_t index) { return index < text.size() && (byteAt(index) & 0xC0U) == 0x80; };
  const unsigned char lead = byteAt(0);
  if (lead < 0xC2 || lead > 0xF4 || !continues(1)) {
    return 1;
  }
  const unsigned char second = byteAt(1);
  const bool pairIsWrong = (lead == 0xE0 && second < 0xA0) || (lead == 0xED && second >= 0xA0) ||
                           (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second >= 0x90);
  return !pairIsWrong && lead >= 0xF0 && continues(2) ? 3 : 2;
}

/// What replaces the byte that does not convert. The gaps of the Windows code pages between 0x80 and 0x9F are
/// control characters of the same number.
char16_t UnitForBadByte(unsigned char byte, std::uint32_t codePage) {
  const bool isControl = ((codePage >= 1251 && codePage <= 1258) || codePage == 874) && byte >= 0x80 && byte <= 0x9F;
  return isControl ? byte : u'\uFFFD';
}

/// The text as UTF-16, all of it; nothing where that fails.
WideText Decode(TextView text, std::uint32_t codePage, const char* name) {
  WideText wide(text.size(), u'\0');
  Converter converter(kUtf16, name, {reinterpret_cast<char*>(wide.data()), wide.size() * sizeof(char16_t)});
  if (!converter.IsOpen()) {
    return {};
  }
  Converter::Stop stop = converter.Feed(text);
  while (stop == Converter::Stop::BadInput) {
    const char16_t unit = UnitForBadByte(static_cast<unsigned char>(text[0]), codePage);
    if (converter.Put(BytesOf(&unit, 1)) == Converter::Stop::NoRoom) {
      return {};
    }
    text.remove_prefix(codePage == kUtf8 ? std::min(MalformedUtf8Length(text), text.size()) : 1);
    stop = converter.Feed(text);
  }
  if (stop != Converter::Stop::AtEnd || converter.Flush() != Converter::Stop::AtEnd) {
    return {};
  }
  wide.resize(wide.size() - converter.Left() / sizeof(char16_t));
  return wide;
}

/// Writes what replaces a unit that does not convert: the reverse of UnitForBadByte, U+FFFD for half a surrogate
/// pair in UTF-8, else "?".
Converter::Stop PutReplacement(Converter& converter, char16_t unit, std::uint32_t codePage) {
  if (unit >= 0x80 && unit <= 0x9F && UnitForBadByte(static_cast<unsigned char>(unit), codePage) == unit) {
    const char byte = static_cast<char>(unit);
    return converter.Put({&byte, 1});
  }
  const char16_t replacement = codePage == kUtf8 ? u'\uFFFD' : u'?';
  std::string_view bytes = BytesOf(&replacement, 1);
  return converter.Feed(bytes);
}

/// The units in a code page, all of them; nothing where that fails.
Text Encode(std::u16string_view wide, std::uint32_t codePage, const char* name) {
  Text text(wide.size() + 1, '\0');
  Converter converter(name, kUtf16, text);
  if (!converter.IsOpen()) {
    return {};
  }
  std::string_view input = BytesOf(wide.data(), wide.size());
  Converter::Stop stop = converter.Feed(input);
  while (stop == Converter::Stop::BadInput) {
    const char16_t unit = wide[wide.size() - input.size() / sizeof(char16_t)];
    stop = PutReplacement(converter, unit, codePage);
    if (stop != Converter::Stop::AtEnd) {
      return {};
    }
    input.remove_prefix(sizeof(char16_t));
    stop = converter.Feed(input);
  }
  if (stop != Converter::Stop::AtEnd || converter.Flush() != Converter::Stop::AtEnd) {
    return {};
  }
  text.resize(text.size() - converter.Left());
  return text;
}

template <class Characters>
Characters UpToFirstZero(Characters characters) {
  characters.resize(std::min(characters.find(typename Characters::value_type{}), characters.size()));
  return characters;
}

/// The number in a character set's name, for example 28592 for "ISO-8859-2"; 0 for a name of another form.
std::uint32_t NumberAfter(std::string_view prefix, std::string_view name, std::uint32_t base) {
  std::uint32_t number = 0;
  if (!name.starts_with(prefix)) {
    return 0;
  }
  name.remove_prefix(prefix.size());
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
  return error == std::errc() && end == name.data() + name.size() ? base + number : 0;
}

std::uint32_t NumberOfCharacterSet(std::string_view name) {
  if (name == "UTF-8") {
    return kUtf8;
  }
  const std::uint32_t number = std::max(NumberAfter("ISO-8859-", name, 28590), NumberAfter("CP", name, 0));
  return number == kWindows1250 || ConverterName(number) != nullptr ? number : kAscii;
}

}  // namespace

WideText CodePages::ToWide(TextView text, std::uint32_t codePage) const {
  const std::uint32_t resolved = Resolved(codePage);
  if (resolved == kWindows1250) {
    return windows1250::ToWide(text);
  }
  const char* const name = ConverterName(resolved);
  return name == nullptr || text.empty() ? WideText() : UpToFirstZero(Decode(text, resolved, name));
}

Text CodePages::FromWide(std::u16string_view wide, std::uint32_t codePage) const {
  const std::uint32_t resolved = Resolved(codePage);
  if (resolved == kWindows1250) {
    return windows1250::FromWide(wide);
  }
  const char* const name = ConverterName(resolved);
  return name == nullptr || wide.empty() ? Text() : UpToFirstZero(Encode(wide, resolved, name));
}

std::uint32_t CodePages::AnsiCodePage() const {
  // The user's locale, whether or not the program has made it its own.
  const locale_t locale = newlocale(LC_CTYPE_MASK, "", nullptr);
  if (locale == nullptr) {
    return kAscii;
  }
  const std::uint32_t number = NumberOfCharacterSet(nl_langinfo_l(CODESET, locale));
  freelocale(locale);
  return number;
}

std::int32_t CodePages::FamilyOfSystem() const {
  return 2;
}

}  // namespace kiv::platform
