#include "kivtools/c/TextShaping.h"

#include "kivtools/WinUtil/TextShaping.h"
#include "package/c/Abi.h"

using namespace kiv::c;

namespace {

kiv::Guid ToGuid(const KivGuid& guid) {
  return {guid.data1, guid.data2, guid.data3, std::to_array(guid.data4)};
}

}  // namespace

extern "C" {

KivLength KivTextIntreGhilimele(char quote, const char* text, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::TextIntreGhilimele(quote, KIV_TEXT(text, length)); });
}

KivLength KivTextInGhilimele(const char* text, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::TextInGhilimele(KIV_TEXT(text, length)); });
}

KivLength KivQuoteText(const char* text, size_t length, char quote, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::QuoteText(KIV_TEXT(text, length), quote); });
}

KivLength KivTextDinGhilimele(const char* text, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::TextDinGhilimele(KIV_TEXT(text, length)); });
}

KivLength KivPadLeft(const char* text, size_t length, int32_t width, char fill, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::PadLeft(KIV_TEXT(text, length), width, fill); });
}

KivLength KivPadRight(const char* text, size_t length, int32_t width, char fill, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::PadRight(KIV_TEXT(text, length), width, fill); });
}

KivLength KivTextDeLatimeFixa(const char* text, size_t length, int32_t width, const char* fill, size_t fillLength,
                              char* buffer, size_t capacity) {
  return GiveText(buffer, capacity,
                  [=] { return kiv::TextDeLatimeFixa(KIV_TEXT(text, length), width, KIV_TEXT(fill, fillLength)); });
}

KivLength KivStripDot(const char* text, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::StripDot(KIV_TEXT(text, length)); });
}

KivLength KivStripDotExtract2CifreDupaVirgula(const char* text, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::StripDotExtract2CifreDupaVirgula(KIV_TEXT(text, length)); });
}

KivLength KivPunePuncteInSimbol(const char* text, size_t length, int32_t group, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::PunePuncteInSimbol(KIV_TEXT(text, length), group); });
}

KivAnswer KivRespectaMasca(const char* text, size_t length, const char* mask, size_t maskLength) {
  return GiveAnswer([=] { return kiv::RespectaMasca(KIV_TEXT(text, length), KIV_TEXT(mask, maskLength)); });
}

KivAnswer KivGuidEgal(const KivGuid* left, const KivGuid* right) {
  return GiveAnswer([=] { return kiv::GuidEgal(ToGuid(KIV_REQUIRED(left)), ToGuid(KIV_REQUIRED(right))); });
}

KivLength KivNumeDinNumeSiPrenume(const char* fullName, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::NumeDinNumeSiPrenume(KIV_TEXT(fullName, length)); });
}

KivLength KivPrenumeDinNumeSiPrenume(const char* fullName, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::PrenumeDinNumeSiPrenume(KIV_TEXT(fullName, length)); });
}

KivLength KivScrieFrumosNrTelefon(const char* number, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::ScrieFrumosNrTelefon(KIV_TEXT(number, length)); });
}

}  // extern "C"
