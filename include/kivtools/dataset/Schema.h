/// @file
/// Schema: the fields of a dataset.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "kivtools/Export.h"
#include "kivtools/Types.h"
#include "kivtools/dataset/Collation.h"
#include "kivtools/dataset/Value.h"

namespace kiv {

namespace store {
struct SchemaData;
}  // namespace store

// g++ 12 takes the scoped names for others of the types Text and WideText.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wshadow"
/// What a field holds.
enum class FieldType : std::uint8_t {
  Int16,     ///< -32,768 to 32,767
  Int32,     ///< -2^31 to 2^31 - 1
  Int64,     ///< -2^63 to 2^63 - 1
  Currency,  ///< exact, four decimals
  Double,    ///< never not-a-number; -0.0 is stored as 0.0; never part of a key
  Date,      ///< a day of the years 1 to 9999; a time of day is refused, not cut
  Time,      ///< a time of day, to the millisecond
  DateTime,  ///< a moment of the years 1 to 9999, rounded to the millisecond
  Text,      ///< Windows-1250, at most `size` bytes; 0 sets no limit of its own
  WideText,  ///< UTF-16, at most `size` units; unpaired surrogates are refused
  Boolean,   ///< yes or no
  Guid,      ///< 16 bytes, in the order of their text form
  Memo,      ///< Windows-1250 of any length up to 2^31 - 1
  Blob,      ///< bytes, up to 2^31 - 1
  AutoInc,   ///< as Int64; new rows get -1, -2, ... until the database gives the number
};
#pragma GCC diagnostic pop

/// What a field demands. Combine with `|`.
enum class FieldFlags : std::uint8_t {
  None = 0,
  Key = 1,       ///< part of the unique key; such a field is never null
  Required = 2,  ///< never null
  ReadOnly = 4,  ///< set when its row is inserted, never by an update
  Check = 8,     ///< takes part in the detection of conflicts; every type but Memo and Blob does so unasked
  NoCheck = 16,  ///< takes no part in it
};

/// Both sets together. Example: `kKey | kReadOnly`.
constexpr FieldFlags operator|(FieldFlags left, FieldFlags right) noexcept {
  return static_cast<FieldFlags>(static_cast<std::uint8_t>(left) | static_cast<std::uint8_t>(right));
}
/// Whether all of `wanted` are among the flags. Example: `Has(kKey | kReadOnly, kKey)` is true.
constexpr bool Has(FieldFlags flags, FieldFlags wanted) noexcept {
  return (static_cast<std::uint8_t>(flags) & static_cast<std::uint8_t>(wanted)) == static_cast<std::uint8_t>(wanted);
}

inline constexpr FieldFlags kKey = FieldFlags::Key;
inline constexpr FieldFlags kRequired = FieldFlags::Required;
inline constexpr FieldFlags kReadOnly = FieldFlags::ReadOnly;
inline constexpr FieldFlags kCheck = FieldFlags::Check;
inline constexpr FieldFlags kNoCheck = FieldFlags::NoCheck;

/// One field. Examples: `{"partener", FieldType::Text, 40, kRequired}`,
/// `{"cod", FieldType::Text, 12, kKey, {}, Collation::Binary}`.
struct FieldDef {
  /// Windows-1250 letters, digits and "_", not a digit first; 1 to 63 bytes.
  Text name;
  FieldType type = FieldType::Int32;
  /// The most bytes of a Text (up to 32,000) or units of a WideText (up to 16,000); 0 elsewhere.
  std::int32_t size = 0;
  FieldFlags flags = FieldFlags::None;
  /// What a new row gets where nothing is given.
  Value defaultValue;
  /// The order of its texts; Romanian for every type but Text and Memo, which may have another.
  Collation collation = Collation::Romanian;

  FieldDef(Text fieldName, FieldType fieldType, FieldFlags fieldFlags = FieldFlags::None, Value fieldDefault = {})
      : name(std::move(fieldName)), type(fieldType), flags(fieldFlags), defaultValue(std::move(fieldDefault)) {}
  FieldDef(Text fieldName, FieldType fieldType, std::int32_t fieldSize, FieldFlags fieldFlags = FieldFlags::None,
           Value fieldDefault = {}, Collation textOrder = Collation::Romanian)
      : name(std::move(fieldName)),
        type(fieldType),
        size(fieldSize),
        flags(fieldFlags),
        defaultValue(std::move(fieldDefault)),
        collation(textOrder) {}

  /// Whether it takes part in the detection of conflicts. Example: false for a Memo without flags.
  [[nodiscard]] bool IsChecked() const noexcept {
    return !Has(flags, kNoCheck) && (Has(flags, kCheck) || (type != FieldType::Memo && type != FieldType::Blob));
  }
};

/// A value of a field of that type for people, as UTF-8; empty for null. Amounts have four decimals, dates are those of
/// ISO 8601, of bytes their number is shown.
///
///     ShownValue(FieldType::Currency, 1234.56_lei)   // "1234.5600"
[[nodiscard]] KIV_API std::string ShownValue(FieldType type, const ValueView& value);

/// The fields of a dataset, checked; cheap to copy.
class Schema {
 public:
  /// Throws Error, naming the field, for a name that is no identifier or occurs twice (case does not count), a size
  /// that the type does not have, a key of Double, Memo or Blob, a collation of what is no Text or Memo, a default that
  /// the field could not hold; and for no field at all or more than 1,024.
  ///
  ///     Schema({{"id", FieldType::AutoInc, kKey}, {"suma", FieldType::Currency}})
  KIV_API Schema(std::initializer_list<FieldDef> fields);  // NOLINT: reads as the list that it is
  /// The same from a list made at run time.
  KIV_API explicit Schema(std::vector<FieldDef> fields);

  /// The fields in their order. Example: `schema.Fields()[0].name` is "id".
  [[nodiscard]] KIV_API std::span<const FieldDef> Fields() const noexcept;
  /// The place of the field of that name, case apart. Example: `schema.IndexOf("SUMA")` is 1.
  [[nodiscard]] KIV_API std::optional<std::size_t> IndexOf(TextView name) const noexcept;
  /// The places of the key's fields, in their order. Example: {0}.
  [[nodiscard]] KIV_API std::span<const std::uint16_t> KeyFields() const noexcept;

 private:
  friend struct store::SchemaData;
  std::shared_ptr<const store::SchemaData> data_;
};

}  // namespace kiv
