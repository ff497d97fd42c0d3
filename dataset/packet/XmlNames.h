#pragma once

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "dataset/store/Column.h"
#include "kivtools/Ascii.h"
#include "kivtools/Text.h"

/// What elements and attributes are called in XML.
namespace kiv::packet {

/// The types of fields, in the order of FieldType.
inline constexpr std::array<std::string_view, 15> kXmlTypes = {"int16",   "int32", "int64",    "currency", "double",
                                                               "date",    "time",  "datetime", "text",     "widetext",
                                                               "boolean", "guid",  "memo",     "blob",     "autoinc"};
/// The collations of fields, in the order of Collation.
inline constexpr std::array<std::string_view, 3> kXmlCollations = {"ro", "ro-nocase", "binary"};
/// The states of rows, in the order of RowState; rows that are Unmodified do not say so.
inline constexpr std::array<std::string_view, 4> kXmlStates = {"unmodified", "inserted", "modified", "deleted"};
/// An attribute of a row that is not the value of a field.
inline constexpr std::string_view kXmlState = "state";
/// In <was>: the fields that were null, with blanks between them.
inline constexpr std::string_view kXmlNulls = "null";

/// The attribute that holds a field's values: its name, or "f" and its place where that name is taken or not allowed.
/// The letters with cedilla are used, because older readers do not know the others as letters.
inline std::string XmlAttributeOf(std::size_t field, TextView name) {
  Text folded = Text(name.substr(0, 3));
  for (char& character : folded) {
    character = ascii::ToLower(character);
  }
  const bool isAlias = name.size() > 1 && name[0] == 'f' && ascii::IsDigit(name[1]);
  if (name == kXmlState || name == kXmlNulls || folded == "xml" || isAlias) {
    return "f" + std::to_string(field);
  }
  return ToUtf8(name);
}

/// Whether a text has characters that XML does not allow at all.
inline bool HasForbidden(FieldType type, std::string_view bytes) noexcept {
  const auto isBad = [](unsigned unit) { return unit < 0x20 && unit != '\t' && unit != '\n' && unit != '\r'; };
  if (type != FieldType::WideText) {
    return std::ranges::any_of(bytes, [&](char character) { return isBad(static_cast<unsigned char>(character)); });
  }
  for (std::size_t at = 0; at < bytes.size(); at += sizeof(char16_t)) {
    const unsigned unit = static_cast<unsigned char>(bytes[at]) | unsigned{static_cast<unsigned char>(bytes[at + 1])}
                                                                      << 8U;
    if (isBad(unit) || unit >= 0xFFFE) {
      return true;
    }
  }
  return false;
}

}  // namespace kiv::packet
