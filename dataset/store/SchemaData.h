#pragma once

#include <array>
#include <cstdint>
#include <utility>
#include <vector>

#include "kivtools/dataset/Schema.h"
#include "kivtools/dataset/store/Plane.h"

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

inline constexpr std::array kTraits = {
    TypeTraits{FieldType::Int16, "Int16", Plane::Width::Two, Storage::Fixed},
    TypeTraits{FieldType::Int32, "Int32", Plane::Width::Four, Storage::Fixed},
    TypeTraits{FieldType::Int64, "Int64", Plane::Width::Eight, Storage::Fixed},
    TypeTraits{FieldType::Currency, "Currency", Plane::Width::Eight, Storage::Fixed},
    TypeTraits{FieldType::Double, "Double", Plane::Width::Eight, Storage::Fixed},
    TypeTraits{FieldType::Date, "Date", Plane::Width::Four, Storage::Fixed},
    TypeTraits{FieldType::Time, "Time", Plane::Width::Four, Storage::Fixed},
    TypeTraits{FieldType::DateTime, "DateTime", Plane::Width::Eight, Storage::Fixed},
    TypeTraits{FieldType::Text, "Text", Plane::Width::Four, Storage::Texts},
    TypeTraits{FieldType::WideText, "WideText", Plane::Width::Four, Storage::Texts},
    TypeTraits{FieldType::Boolean, "Boolean", Plane::Width::Bit, Storage::Fixed},
    TypeTraits{FieldType::Guid, "Guid", Plane::Width::Eight, Storage::Fixed},
    TypeTraits{FieldType::Memo, "Memo", Plane::Width::Four, Storage::Large},
    TypeTraits{FieldType::Blob, "Blob", Plane::Width::Four, Storage::Large},
    TypeTraits{FieldType::AutoInc, "AutoInc", Plane::Width::Eight, Storage::Fixed},
};

consteval bool TraitsStandInOrder() {
  for (std::size_t i = 0; i < kTraits.size(); ++i) {
    if (kTraits[i].type != static_cast<FieldType>(i)) {
      return false;
    }
  }
  return true;
}
static_assert(TraitsStandInOrder());

/// Of that type. Example: `TraitsOf(FieldType::Text).storage` is Storage::Texts.
constexpr const TypeTraits& TraitsOf(FieldType type) noexcept {
  return kTraits[static_cast<std::size_t>(type)];
}

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

/// The most fields that a schema can have.
inline constexpr std::size_t kMostFields = 1024;

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
