#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "dataset/store/Cell.h"

/// Values as XML holds them: attributes in UTF-8, and the base64 of elements.
namespace kiv::packet {

/// Turns a text of XML into a value, whose bytes it keeps.
class XmlValue {
 public:
  /// An attribute's text. False where it is no value of that type. Throws ConversionError for letters that Windows-1250
  /// does not have.
  bool Take(FieldType type, std::string_view utf8, store::Cell& cell);
  /// The same for an element's base64.
  bool TakeBase64(FieldType type, std::string_view text, store::Cell& cell);
  /// Keeps bytes that are still where the text was.
  void Keep(store::Cell& cell);

 private:
  void TakeWide(store::Cell& cell);

  std::string bytes_;
  std::u16string wide_;
};

/// The values of a row or of its originals as they come in.
struct XmlRowValues {
  std::vector<store::Cell> cells;
  std::vector<XmlValue> holders;
  std::vector<std::uint64_t> setBy;  // by field, the number of the row that has set it last

  explicit XmlRowValues(std::size_t fields) : cells(fields), holders(fields), setBy(fields) {}
};

}  // namespace kiv::packet
