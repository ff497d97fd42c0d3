#include "dataset/packet/XmlPull.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

#include "dataset/packet/Unicode.h"
#include "kivtools/Ascii.h"
#include "kivtools/Text.h"

namespace kiv::packet {
namespace {

constexpr std::size_t kBuffer = std::size_t{256} * 1024;
constexpr std::size_t kLongestToken = std::size_t{16} << 20U;
constexpr std::size_t kMostAttributes = 1100;
constexpr std::size_t kMostDepth = 16;
/// The most bytes of UTF-8 that a byte of Windows-1250 becomes.
constexpr std::size_t kMostUtf8 = 3;
constexpr std::size_t kLongestDeclaration = 1000;
constexpr std::string_view kMark = "\xEF\xBB\xBF";

/// Whether a character may be in XML at all.
constexpr bool IsAllowed(char32_t character) noexcept {
  return character >= 0x20 ? character != 0xFFFE && character != 0xFFFF && (character < 0xD800 || character > 0xDFFF) &&
                                 character <= 0x10FFFF
                           : character == '\t' || character == '\n' || character == '\r';
}

/// What ends a name.
constexpr auto kEndsName = [] {
  std::array<bool, 256> ends{};
  for (const char character : {'\0', ' ', '\t', '\n', '\r', '=', '/', '>', '<', '"', '\'', '&', '?', '!'}) {
    ends[static_cast<unsigned char>(character)] = true;
  }
  return ends;
}();

/// What does not stand for itself in a value, or ends it.
constexpr auto kStopsValue = [] {
  std::array<bool, 256> stops{};
  for (const char character : {'\0', '\t', '\n', '\r', '<', '"', '\'', '&'}) {
    stops[static_cast<unsigned char>(character)] = true;
  }
  return stops;
}();

char* EndOfName(char* at) noexcept {
  while (!kEndsName[static_cast<unsigned char>(*at)]) {
    ++at;
  }
  return at;
}

char* SkipBlanks(char* at) noexcept {
  while (XmlPull::IsBlank(*at)) {
    ++at;
  }
  return at;
}

/// Whether 64 bytes are ASCII that may be in XML. There is no way out of the loop, so that many are looked at together;
/// what is no ASCII is below a blank where bytes have a sign.
bool AreAllowedAscii(const char* bytes) noexcept {
  unsigned char wrong = 0;
  for (std::size_t i = 0; i < 64; ++i) {
    const auto byte = static_cast<signed char>(bytes[i]);
    const bool isBlank = byte == '\t' || byte == '\n' || byte == '\r';
    wrong |= byte < ' ' && !isBlank ? std::uint8_t{0xFF} : std::uint8_t{0};
  }
  return wrong == 0;
}

std::uint64_t CountLines(std::string_view text) noexcept {
  constexpr std::size_t kMost = 255;  // for a count in one byte, of which many are added up together
  std::uint64_t lines = 0;
  for (std::size_t at = 0; at < text.size(); at += kMost) {
    std::uint8_t more = 0;
    for (const char character : text.substr(at, kMost)) {
      more = static_cast<std::uint8_t>(more + (character == '\n' ? 1 : 0));
    }
    lines += more;
  }
  return lines;
}

/// Whether eight bytes are ASCII without control characters.
bool ArePlain(const char* bytes) noexcept {
  constexpr std::uint64_t kHighBits = 0x8080808080808080U;
  std::uint64_t eight = 0;
  std::memcpy(&eight, bytes, sizeof eight);
  return ((eight | (eight - 0x2020202020202020U)) & kHighBits) == 0;
}

}  // namespace

XmlPull::XmlPull(const PacketSource& source, const Text& operation)
    : source_(source),
      operation_(operation),
      buffer_(kBuffer + kBehind),
      at_(buffer_.data()),
      end_(at_),
      checked_(at_),
      token_(at_) {
  ReadDeclaration();
}

void XmlPull::RefuseAt(const char* place, TextView why) const {
  const char* const begin = buffer_.data();
  const std::string_view before(begin, static_cast<std::size_t>(place - begin));
  const std::size_t lineStart = before.rfind('\n');
  const std::uint64_t column =
      lineStart == std::string_view::npos ? columnsDiscarded_ + before.size() : before.size() - lineStart - 1;
  RefuseText(operation_, {1 + linesDiscarded_ + CountLines(before), 1 + column, discarded_ + before.size()}, why);
}

/// Moves what is left of the present token to the front and adds what the source gives; false at the end.
bool XmlPull::Fill() {
  if (isAtEnd_) {
    return false;
  }
  const std::string_view gone(buffer_.data(), static_cast<std::size_t>(at_ - buffer_.data()));
  const std::size_t lineStart = gone.rfind('\n');
  linesDiscarded_ += CountLines(gone);
  columnsDiscarded_ =
      lineStart == std::string_view::npos ? columnsDiscarded_ + gone.size() : gone.size() - lineStart - 1;
  discarded_ += gone.size();
  const auto kept = static_cast<std::size_t>(end_ - at_);
  const auto checked = static_cast<std::size_t>(checked_ - at_);
  MakeRoom(kept);
  const std::size_t room = (Room() - kept) / (isWindows1250_ ? kMostUtf8 : 1);
  const std::size_t count = source_({reinterpret_cast<std::uint8_t*>(at_) + kept, room});
  isAtEnd_ = count == 0;
  end_ = at_ + kept + count;
  if (isWindows1250_) {
    Convert(kept);
  }
  *end_ = '\0';
  checked_ = at_ + checked;
  if (!isRaw_) {
    Check(checked_);
  }
  return true;
}

/// Puts what is kept to the front, with room for a byte more at least.
void XmlPull::MakeRoom(std::size_t kept) {
  if (kept + kMostUtf8 <= Room()) {
    std::memmove(buffer_.data(), at_, kept);
  } else {
    if (buffer_.size() > kLongestToken) {
      Refuse("un element sau un comentariu este mai lung de 16 MiB");
    }
    std::vector<char> larger(2 * buffer_.size());
    std::memcpy(larger.data(), at_, kept);
    buffer_.swap(larger);
  }
  at_ = buffer_.data();
  token_ = at_;
}

/// Makes UTF-8 of what has come of Windows-1250, for which there is room.
void XmlPull::Convert(std::size_t from) {
  const std::string utf8 = ToUtf8({at_ + from, static_cast<std::size_t>(end_ - at_) - from});
  std::memcpy(at_ + from, utf8.data(), utf8.size());
  end_ = at_ + from + utf8.size();
}

/// Refuses what is no UTF-8 and what XML does not allow. A character that is cut off waits for its rest.
void XmlPull::Check(char* from) {
  const std::string_view text(from, static_cast<std::size_t>(end_ - from));
  std::size_t at = 0;
  while (at < text.size()) {
    if (text.size() - at >= 64 && AreAllowedAscii(text.data() + at)) {
      at += 64;
      continue;
    }
    if (text.size() - at >= 8 && ArePlain(text.data() + at)) {
      at += 8;
      continue;
    }
    const utf8::Decoded decoded = utf8::DecodeAt(text, at);
    if (decoded.length == 0 && text.size() - at < 4 && !isAtEnd_) {
      break;
    }
    if (decoded.length == 0 || !IsAllowed(decoded.character)) {
      RefuseAt(text.data() + at, decoded.length == 0 ? "secventa UTF-8 gresita" : "caracter nepermis in XML");
    }
    at += decoded.length;
  }
  checked_ = from + at;
}

bool XmlPull::Starts(std::string_view with) {
  while (static_cast<std::size_t>(end_ - at_) < with.size() && Fill()) {
  }
  return std::string_view(at_, static_cast<std::size_t>(end_ - at_)).starts_with(with);
}

void XmlPull::RefuseCutShort() const {
  Refuse("textul este retezat");
}

/// Finds out what the bytes are: UTF-8, or what the declaration says.
void XmlPull::ReadDeclaration() {
  const bool hasMark = Starts(kMark);
  at_ += hasMark ? kMark.size() : 0;
  checked_ = at_;
  if (Starts("<?xml")) {
    std::size_t size = 0;
    while ((size = std::string_view(at_, static_cast<std::size_t>(end_ - at_)).find("?>")) == std::string_view::npos) {
      if (static_cast<std::size_t>(end_ - at_) > kLongestDeclaration || !Fill()) {
        Refuse("declaratia XML nu se termina");
      }
    }
    token_ = at_;
    TakeDeclaration({at_, size});
    at_ += size + 2;
  }
  isRaw_ = false;
  if (isWindows1250_) {
    if (hasMark) {
      Refuse("declaratia XML spune Windows-1250, semnul din fata UTF-8");
    }
    // What is there has no room to grow, so it is put into a buffer that has.
    const auto size = static_cast<std::size_t>(end_ - at_);
    std::vector<char> larger(buffer_.size() + kMostUtf8 * size);
    const auto done = static_cast<std::size_t>(at_ - buffer_.data());
    std::memcpy(larger.data(), buffer_.data(), done + size);
    buffer_.swap(larger);
    at_ = buffer_.data() + done;
    end_ = at_ + size;
    Convert(0);
    *end_ = '\0';
  }
  token_ = at_;
  Check(at_);
}

/// <?xml version="1.0" encoding="UTF-8"
void XmlPull::TakeDeclaration(std::string_view declaration) {
  constexpr std::string_view kBlanks = " \t\r\n";
  declaration.remove_prefix(5);
  const auto skip = [&] {
    const std::size_t blanks = std::min(declaration.find_first_not_of(kBlanks), declaration.size());
    declaration.remove_prefix(blanks);
    return blanks > 0;
  };
  // Takes NAME="..." where it is next.
  const auto take = [&](std::string_view name) {
    const std::string_view before = declaration;
    const bool hasBlank = skip();
    if (!hasBlank || !declaration.starts_with(name)) {
      declaration = before;
      return std::string();
    }
    declaration.remove_prefix(name.size());
    skip();
    const bool hasEquals = declaration.starts_with('=');
    declaration.remove_prefix(hasEquals ? 1 : 0);
    skip();
    const char quote = declaration.empty() ? '\0' : declaration[0];
    const std::size_t close =
        hasEquals && (quote == '"' || quote == '\'') ? declaration.find(quote, 1) : std::string_view::npos;
    if (close == std::string_view::npos) {
      declaration = "?";
      return std::string();
    }
    std::string value(declaration.substr(1, close - 1));
    declaration.remove_prefix(close + 1);
    return value;
  };
  const bool isFirst = take("version") == "1.0";
  std::string encoding = take("encoding");
  std::ranges::transform(encoding, encoding.begin(), ascii::ToLower<char>);
  const std::string standalone = take("standalone");
  skip();
  isWindows1250_ = encoding == "windows-1250";
  if (!isFirst || !declaration.empty() || (!isWindows1250_ && !encoding.empty() && encoding != "utf-8") ||
      (!standalone.empty() && standalone != "yes" && standalone != "no")) {
    Refuse("declaratia XML nu este una cunoscuta: version 1.0, encoding UTF-8 sau windows-1250");
  }
}

XmlPull::Event XmlPull::Next() {
  if (endsAtOnce_) {
    Close();
    return Event::End;
  }
  for (;;) {
    token_ = at_;
    if (at_ == end_) {
      if (Fill()) {
        continue;
      }
      if (!open_.empty() || !hasRoot_) {
        RefuseCutShort();
      }
      return Event::Done;
    }
    if (*at_ != '<') {
      if (TakeContent()) {
        return Event::Text;
      }
    } else if (Starts("</")) {
      TakeEnd();
      return Event::End;
    } else if (Starts("<!--")) {
      TakeComment();
    } else if (Starts("<!") || Starts("<?")) {
      Refuse("declaratii DOCTYPE, CDATA si instructiuni de prelucrare nu sunt permise");
    } else {
      TakeStart();
      return Event::Start;
    }
  }
}

/// Takes text up to the next tag; false where it does not count.
bool XmlPull::TakeContent() {
  char* const first = at_;
  char* const end = std::find_if(at_, checked_, [](char character) { return character == '<' || character == '&'; });
  if (*end == '&') {
    RefuseAt(end, "referintele sunt permise numai in atribute");
  }
  content_ = {first, static_cast<std::size_t>(end - first)};
  at_ = end;
  if (content_.empty()) {
    // Of the next character a part is missing.
    Fill();
    return false;
  }
  if (!open_.empty()) {
    return true;
  }
  if (const auto text = std::ranges::find_if_not(content_, IsBlank); text != content_.end()) {
    RefuseAt(&*text, "text in afara elementelor");
  }
  return false;
}

void XmlPull::TakeComment() {
  for (;;) {
    const std::string_view rest(at_, static_cast<std::size_t>(checked_ - at_));
    const std::size_t dashes = rest.find("--", 4);
    if (dashes != std::string_view::npos && dashes + 2 < rest.size()) {
      if (rest[dashes + 2] != '>') {
        RefuseAt(rest.data() + dashes, "\"--\" in interiorul unui comentariu");
      }
      at_ += dashes + 3;
      return;
    }
    if (!Fill()) {
      RefuseCutShort();
    }
  }
}

void XmlPull::TakeStart() {
  char* end = nullptr;
  while ((end = ParseStart()) == nullptr) {
    if (!Fill()) {
      RefuseCutShort();
    }
  }
  at_ = end;
  if (open_.empty() && hasRoot_) {
    Refuse("al doilea element radacina");
  }
  if (open_.size() == kMostDepth) {
    Refuse("elementele sunt prea adanci");
  }
  hasRoot_ = true;
  open_.emplace_back(name_);
  for (Attribute& attribute : attributes_) {
    if (attribute.isEscaped) {
      Decode(attribute);
    }
  }
}

/// Goes behind the tag; null where it is not all there.
char* XmlPull::ParseStart() {
  attributes_.clear();
  char* at = EndOfName(at_ + 1);
  name_ = {at_ + 1, static_cast<std::size_t>(at - at_ - 1)};
  for (;;) {
    char* const next = SkipBlanks(at);
    if (*next == '>') {
      return next + 1;
    }
    if (*next == '/' && next[1] == '>') {
      endsAtOnce_ = true;
      return next + 2;
    }
    if (*next == '\0' || (*next == '/' && next + 1 == end_)) {
      return nullptr;
    }
    if (next == at || attributes_.size() == kMostAttributes) {
      RefuseAt(next, next == at ? "eticheta nu este scrisa cum trebuie" : "elementul are prea multe atribute");
    }
    at = ParseAttribute(next);
    if (at == nullptr) {
      return nullptr;
    }
  }
}

char* XmlPull::ParseAttribute(char* at) {
  char* const nameEnd = EndOfName(at);
  char* const equals = SkipBlanks(nameEnd);
  if (*equals == '\0') {
    return nullptr;
  }
  char* const quote = *equals == '=' ? SkipBlanks(equals + 1) : equals;
  if (*quote == '\0') {
    return nullptr;
  }
  if (nameEnd == at || *equals != '=' || (*quote != '"' && *quote != '\'')) {
    RefuseAt(at, "atributul nu este scris cum trebuie");
  }
  bool isEscaped = false;
  char* end = quote + 1;
  for (;; ++end) {
    while (!kStopsValue[static_cast<unsigned char>(*end)]) {
      ++end;
    }
    if (*end == *quote) {
      break;
    }
    if (*end == '\0') {
      return nullptr;
    }
    if (*end == '<') {
      RefuseAt(end, "\"<\" in valoarea unui atribut");
    }
    isEscaped = isEscaped || (*end != '"' && *end != '\'');
  }
  attributes_.push_back({{at, static_cast<std::size_t>(nameEnd - at)},
                         {quote + 1, static_cast<std::size_t>(end - quote - 1)},
                         isEscaped});
  return end + 1;
}

void XmlPull::TakeEnd() {
  char* at = nullptr;
  for (;;) {
    at = SkipBlanks(EndOfName(at_ + 2));
    if (*at != '\0') {
      break;
    }
    if (!Fill()) {
      RefuseCutShort();
    }
  }
  const std::string_view name(at_ + 2, static_cast<std::size_t>(EndOfName(at_ + 2) - at_ - 2));
  if (*at != '>' || open_.empty() || name != open_.back()) {
    Refuse("eticheta de sfarsit nu este a elementului inceput");
  }
  at_ = at + 1;
  Close();
}

void XmlPull::Close() {
  endsAtOnce_ = false;
  ended_ = std::move(open_.back());
  open_.pop_back();
  name_ = ended_;
}

/// Blanks become spaces, references what they stand for; both only make a value shorter.
void XmlPull::Decode(Attribute& attribute) const {
  char* const first = const_cast<char*>(attribute.value.data());  // it lies in the buffer
  char* out = first;
  const char* const end = first + attribute.value.size();
  for (const char* at = first; at < end;) {
    if (*at == '&') {
      at = DecodeReference(at, out);
    } else {
      at += *at == '\r' && at[1] == '\n' ? 1 : 0;
      *out++ = IsBlank(*at) ? ' ' : *at;
      ++at;
    }
  }
  attribute.value = {first, static_cast<std::size_t>(out - first)};
}

const char* XmlPull::DecodeReference(const char* at, char*& out) const {
  constexpr std::array<std::pair<std::string_view, char>, 5> kEntities = {
      {{"&lt;", '<'}, {"&gt;", '>'}, {"&amp;", '&'}, {"&quot;", '"'}, {"&apos;", '\''}}};
  constexpr std::size_t kLongest = 12;
  const std::string_view rest(at, static_cast<std::size_t>(end_ - at));
  for (const auto& [entity, character] : kEntities) {
    if (rest.starts_with(entity)) {
      *out++ = character;
      return at + entity.size();
    }
  }
  const bool isHex = rest.starts_with("&#x");
  const char* const digits = at + (isHex ? 3 : 2);
  const std::size_t size = rest.substr(0, kLongest).find(';');
  std::uint32_t number = 0;
  if (rest.starts_with("&#") && size != std::string_view::npos) {
    const char* const last = at + size;
    const auto read = std::from_chars(digits, last, number, isHex ? 16 : 10);
    if (read.ec == std::errc{} && read.ptr == last && digits < last && IsAllowed(number)) {
      std::string utf8;
      AppendUtf8(utf8, char32_t{number});
      out = std::ranges::copy(utf8, out).out;
      return last + 1;
    }
  }
  RefuseAt(at, "referinta nu este una dintre cele permise");
}

}  // namespace kiv::packet
