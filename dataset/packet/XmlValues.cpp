#include "dataset/packet/XmlValues.h"

#include <algorithm>
#include <cstring>

#include "dataset/packet/Base64.h"
#include "dataset/packet/Unicode.h"
#include "dataset/packet/ValueText.h"
#include "dataset/store/SchemaData.h"

namespace kiv::packet {

using store::Cell;
using store::Storage;
using store::TraitsOf;

bool XmlValue::Take(FieldType type, std::string_view utf8, Cell& cell) {
  if (TraitsOf(type).storage == Storage::Fixed) {
    return ReadValue(type, utf8, cell);
  }
  cell = {.bytes = utf8, .isNull = false};
  if (type == FieldType::WideText) {
    wide_.clear();
    AppendUtf16(wide_, utf8);
    TakeWide(cell);
  } else if (std::ranges::any_of(utf8, [](char character) { return static_cast<unsigned char>(character) >= 0x80; })) {
    bytes_ = FromUtf8(utf8);
    cell.bytes = bytes_;
  }
  return type != FieldType::Blob;
}

bool XmlValue::TakeBase64(FieldType type, std::string_view text, Cell& cell) {
  bytes_.clear();
  cell = {.isNull = false};
  if (TraitsOf(type).storage == Storage::Fixed || !AppendFromBase64(bytes_, text)) {
    return false;
  }
  cell.bytes = bytes_;
  if (type == FieldType::WideText) {
    wide_.assign(bytes_.size() / 2, u'\0');
    std::memcpy(wide_.data(), bytes_.data(), wide_.size() * 2);
    TakeWide(cell);
    return bytes_.size() % 2 == 0;
  }
  return true;
}

void XmlValue::Keep(Cell& cell) {
  if (!cell.isNull && !cell.bytes.empty() && cell.bytes.data() != bytes_.data() &&
      cell.bytes.data() != reinterpret_cast<const char*>(wide_.data())) {
    bytes_.assign(cell.bytes);
    cell.bytes = bytes_;
  }
}

void XmlValue::TakeWide(Cell& cell) {
  cell.bytes = {reinterpret_cast<const char*>(wide_.data()), wide_.size() * sizeof(char16_t)};
}

}  // namespace kiv::packet
