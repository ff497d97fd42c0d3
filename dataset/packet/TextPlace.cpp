#include "dataset/packet/TextPlace.h"

#include "core/Numbers.h"
#include "core/WideText.h"
#include "dataset/store/SchemaData.h"

namespace kiv::packet {

void RefuseText(const Text& operation, const TextPlace& place, TextView why) {
  Text message = operation + ": linia ";
  AppendDecimal(message, place.line);
  if (place.column != 0) {
    message += ", coloana ";
    AppendDecimal(message, place.column);
  }
  throw TextPacketError(place.line, place.column, place.offset, message.append(": ").append(why));
}

Text ShownUtf8(std::string_view utf8) {
  Text shown;
  for (std::size_t at = 0; at < utf8.size();) {
    const utf8::Decoded decoded = utf8::DecodeAt(utf8, at);
    shown += decoded.length == 0             ? utf8[at]
             : decoded.character >= 0x10000U ? '?'
                                             : ShownByte(static_cast<char16_t>(decoded.character));
    at += decoded.length == 0 ? 1 : decoded.length;
  }
  return shown;
}

Text ShownPiece(std::string_view utf8) {
  constexpr std::size_t kMost = 80;
  return store::Quoted(ShownUtf8(utf8.substr(0, kMost))) + (utf8.size() > kMost ? "..." : "");
}

}  // namespace kiv::packet
