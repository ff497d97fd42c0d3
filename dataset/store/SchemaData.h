#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "dataset/store/Plane.h"
#include "kivtools/dataset/Schema.h"

namespace kiv::store {

/// How the values of a type are kept.
enum class Storage : std::uint8_t {
  Fixed,  ///< in the column
  Texts,  ///< in the field's texts, the column holds codes
  Large,  ///< among the large values, the column holds their numbers
};

/// What a type is made of.
struct TypeTraits {
  FieldType type;
  const char* name;
  Plane::Width width;
  Storage storage;
};

/// Of that type. Example: `TraitsOf(FieldType::Text).storage` is Storage::Texts.
const TypeTraits& TraitsOf(FieldType type) noexcept;

/// The bytes that a value takes in a change record: its elements in the column. A Guid has two of eight bytes.
constexpr std::size_t BytesInRecord(FieldType type, const TypeTraits& traits) noexcept {
  return type == FieldType::Guid ? 16 : Plane::BytesOf(traits.width, 1);
}

/// Whether the name can be that of a field or a dataset: letters of Windows-1250, digits and "_", no digit first, 1 to
/// 63 bytes. Example: false for "2024".
bool IsIdentifier(TextView name) noexcept;

/// The name as names are compared: letters in lower case. Example: "Suma" gives "suma".
Text FoldName(TextView name);

/// A name in an error message: quotes inside and control characters do no harm there.
Text Quoted(TextView name);

/// What a Schema stands for.
struct SchemaData {
  std::vector<FieldDef> fields;
  std::vector<std::uint16_t> keyFields;
  /// Folded names in order, and whose they are.
  std::vector<std::pair<Text, std::uint16_t>> names;

  /// Checks the fields. Throws as Schema's constructor.
  explicit SchemaData(std::vector<FieldDef> definitions);
  static const SchemaData& Of(const Schema& schema) noexcept { return *schema.data_; }
  [[nodiscard]] std::optional<std::size_t> IndexOf(TextView name) const noexcept;
};

}  // namespace kiv::store
