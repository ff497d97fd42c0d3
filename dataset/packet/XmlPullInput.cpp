#include <algorithm>
#include <cstring>

#include "dataset/packet/Unicode.h"
#include "dataset/packet/XmlPull.h"
#include "kivtools/Ascii.h"
#include "kivtools/Text.h"

// How the text comes: what its bytes are, whether they may be in XML, and at which line and column they are.

namespace kiv::packet {
namespace {

constexpr std::size_t kBuffer = std::size_t{256} * 1024;
constexpr std::size_t kLongestToken = std::size_t{16} << 20U;
/// The most bytes of UTF-8 that a byte of Windows-1250 becomes.
constexpr std::size_t kMostUtf8 = 3;
constexpr std::size_t kLongestDeclaration = 1000;
constexpr std::string_view kMark = "\xEF\xBB\xBF";

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
    if (decoded.length == 0 || !IsAllowedInXml(decoded.character)) {
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

}  // namespace kiv::packet
