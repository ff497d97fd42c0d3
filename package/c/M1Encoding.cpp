#include "kivtools/c/M1Encoding.h"

#include "kivtools/WinUtil/M1Encoding.h"
#include "package/c/Abi.h"

using namespace kiv::c;

extern "C" {

KivLength KivEncodeM1String(const char* text, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::EncodeM1String(KIV_TEXT(text, length)); });
}

KivLength KivDecodeM1String(const char* encoded, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::DecodeM1String(KIV_TEXT(encoded, length)); });
}

}  // extern "C"
