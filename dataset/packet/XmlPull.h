#pragma once

#include <span>
#include <string>
#include <vector>

#include "dataset/packet/TextPlace.h"

namespace kiv::packet {

/// Reads the part of XML that datasets need, token by token, in a buffer that only a long token makes larger. It is
/// strict: no document type, no processing instructions, no CDATA, no entities but the five and those of characters.
/// What an element or an attribute may be called is the caller's to check, and so is what text it may hold.
class XmlPull {
 public:
  enum class Event : unsigned char { Start, End, Text, Done };
  struct Attribute {
    std::string_view name;
    std::string_view value;
    bool isEscaped;  // before it was decoded
  };

  XmlPull(const PacketSource& source, const Text& operation);

  /// Goes to the next token. Views of the one before are no more.
  Event Next();
  /// The name of the element that begins or ends.
  [[nodiscard]] std::string_view Name() const noexcept { return name_; }
  /// The attributes of the element that begins, decoded; a name may be there twice.
  [[nodiscard]] std::span<const Attribute> Attributes() const noexcept { return attributes_; }
  /// Whether the element that begins ends with the same token; its End comes all the same.
  [[nodiscard]] bool IsEmptyElement() const noexcept { return endsAtOnce_; }
  /// A piece of text, of which the next one may be the rest. It has no references.
  [[nodiscard]] std::string_view Content() const noexcept { return content_; }
  /// Refuses the present token.
  [[noreturn]] void Refuse(TextView why) const { RefuseAt(token_, why); }
  /// The same at a piece of it.
  [[noreturn]] void RefuseAt(const char* place, TextView why) const;

  /// What has come of the text behind the present token. A zero follows it or a character of which a part is missing,
  /// and all of kBehind bytes may be looked at.
  [[nodiscard]] std::string_view Ahead() const noexcept { return {at_, static_cast<std::size_t>(checked_ - at_)}; }
  /// Goes on at a place in it, as if what lies before were taken.
  void GoTo(const char* place) noexcept { at_ += place - at_; }
  static constexpr std::size_t kBehind = 16;

  /// Where the present token begins.
  [[nodiscard]] const char* TokenStart() const noexcept { return token_; }

  static constexpr bool IsBlank(char character) noexcept {
    return character == ' ' || character == '\t' || character == '\n' || character == '\r';
  }

 private:
  [[nodiscard]] std::size_t Room() const noexcept { return buffer_.size() - kBehind; }
  bool Fill();
  void MakeRoom(std::size_t kept);
  void Check(char* from);
  void Convert(std::size_t from);
  void ReadDeclaration();
  void TakeDeclaration(std::string_view declaration);
  bool TakeContent();
  void TakeComment();
  void TakeStart();
  char* ParseStart();
  char* ParseAttribute(char* at);
  void TakeEnd();
  void Close();
  void Decode(Attribute& attribute) const;
  const char* DecodeReference(const char* at, char*& out) const;
  bool Starts(std::string_view with);
  [[noreturn]] void RefuseCutShort() const;

  const PacketSource& source_;
  const Text& operation_;
  std::vector<char> buffer_;  // a zero behind the last byte, which no text has, and more for who looks at many at once
  char* at_;
  char* end_;
  char* checked_;  // up to here the bytes are right
  const char* token_;
  bool isAtEnd_ = false;
  bool isRaw_ = true;  // until the declaration has said what the bytes are
  bool isWindows1250_ = false;
  bool hasRoot_ = false;
  bool endsAtOnce_ = false;
  std::uint64_t discarded_ = 0;
  std::uint64_t linesDiscarded_ = 0;
  std::uint64_t columnsDiscarded_ = 0;  // bytes of the line that the buffer begins in
  std::string_view name_;
  std::string ended_;
  std::string_view content_;
  std::vector<Attribute> attributes_;
  std::vector<std::string> open_;
};

}  // namespace kiv::packet
