#include "dataset/packet/XmlPull.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "dataset/packet/Unicode.h"
#include "kivtools/Text.h"

namespace kiv::packet {
namespace {

constexpr std::size_t kMostAttributes = 1100;
constexpr std::size_t kMostDepth = 16;

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

}  // namespace

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
    if (read.ec == std::errc{} && read.ptr == last && digits < last && IsAllowedInXml(number)) {
      std::string utf8;
      AppendUtf8(utf8, char32_t{number});
      out = std::ranges::copy(utf8, out).out;
      return last + 1;
    }
  }
  RefuseAt(at, "referinta nu este una dintre cele permise");
}

}  // namespace kiv::packet
