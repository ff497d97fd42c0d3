#include "kivtools/c/TextShaping.h"

#include "kivtools/WinUtil/TextShaping.h"
#include "package/c/Abi.h"

using namespace kiv::c;

namespace {

/// An operation from one Text to another; `name` is its argument's name in messages.
KivLength Shape(kiv::Text (*shape)(kiv::TextView), const char* text, size_t length, const char* name, char* buffer,
                size_t capacity) {
  return GiveText(buffer, capacity, [=] { return shape(TextArgument(text, length, name)); });
}

kiv::Guid ToGuid(const KivGuid& guid) {
  return {guid.data1, guid.data2, guid.data3, std::to_array(guid.data4)};
}

}  // namespace

extern "C" {

KivLength KivTextIntreGhilimele(char quote, const char* text, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] {
    return kiv::TextIntreGhilimele(quote, TextArgument(text, length, "KivTextIntreGhilimele: text"));
  });
}

KivLength KivTextInGhilimele(const char* text, size_t length, char* buffer, size_t capacity) {
  return Shape(kiv::TextInGhilimele, text, length, "KivTextInGhilimele: text", buffer, capacity);
}

KivLength KivQuoteText(const char* text, size_t length, char quote, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity,
                  [=] { return kiv::QuoteText(TextArgument(text, length, "KivQuoteText: text"), quote); });
}

KivLength KivTextDinGhilimele(const char* text, size_t length, char* buffer, size_t capacity) {
  return Shape(kiv::TextDinGhilimele, text, length, "KivTextDinGhilimele: text", buffer, capacity);
}

KivLength KivPadLeft(const char* text, size_t length, int32_t width, char fill, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity,
                  [=] { return kiv::PadLeft(TextArgument(text, length, "KivPadLeft: text"), width, fill); });
}

KivLength KivPadRight(const char* text, size_t length, int32_t width, char fill, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity,
                  [=] { return kiv::PadRight(TextArgument(text, length, "KivPadRight: text"), width, fill); });
}

KivLength KivTextDeLatimeFixa(const char* text, size_t length, int32_t width, const char* fill, size_t fillLength,
                              char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] {
    return kiv::TextDeLatimeFixa(TextArgument(text, length, "KivTextDeLatimeFixa: text"), width,
                                 TextArgument(fill, fillLength, "KivTextDeLatimeFixa: fill"));
  });
}

KivLength KivStripDot(const char* text, size_t length, char* buffer, size_t capacity) {
  return Shape(kiv::StripDot, text, length, "KivStripDot: text", buffer, capacity);
}

KivLength KivStripDotExtract2CifreDupaVirgula(const char* text, size_t length, char* buffer, size_t capacity) {
  return Shape(kiv::StripDotExtract2CifreDupaVirgula, text, length, "KivStripDotExtract2CifreDupaVirgula: text", buffer,
               capacity);
}

KivLength KivPunePuncteInSimbol(const char* text, size_t length, int32_t group, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] {
    return kiv::PunePuncteInSimbol(TextArgument(text, length, "KivPunePuncteInSimbol: text"), group);
  });
}

KivAnswer KivRespectaMasca(const char* text, size_t length, const char* mask, size_t maskLength) {
  return GiveAnswer([=] {
    return kiv::RespectaMasca(TextArgument(text, length, "KivRespectaMasca: text"),
                              TextArgument(mask, maskLength, "KivRespectaMasca: mask"));
  });
}

KivAnswer KivGuidEgal(const KivGuid* left, const KivGuid* right) {
  return GiveAnswer([=] {
    return kiv::GuidEgal(ToGuid(PointerArgument(left, "KivGuidEgal: left")),
                         ToGuid(PointerArgument(right, "KivGuidEgal: right")));
  });
}

KivLength KivNumeDinNumeSiPrenume(const char* fullName, size_t length, char* buffer, size_t capacity) {
  return Shape(kiv::NumeDinNumeSiPrenume, fullName, length, "KivNumeDinNumeSiPrenume: fullName", buffer, capacity);
}

KivLength KivPrenumeDinNumeSiPrenume(const char* fullName, size_t length, char* buffer, size_t capacity) {
  return Shape(kiv::PrenumeDinNumeSiPrenume, fullName, length, "KivPrenumeDinNumeSiPrenume: fullName", buffer,
               capacity);
}

KivLength KivScrieFrumosNrTelefon(const char* number, size_t length, char* buffer, size_t capacity) {
  return Shape(kiv::ScrieFrumosNrTelefon, number, length, "KivScrieFrumosNrTelefon: number", buffer, capacity);
}

}  // extern "C"
