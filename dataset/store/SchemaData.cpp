#include "dataset/store/SchemaData.h"

#include <algorithm>
#include <array>

#include "core/Letters.h"
#include "core/Numbers.h"
#include "dataset/store/Cell.h"

namespace kiv::store {
namespace {

constexpr std::size_t kLongestName = 63;
constexpr std::int32_t kMostTextBytes = 32'000;
constexpr std::int32_t kMostWideUnits = 16'000;

[[noreturn]] void Refuse(const FieldDef& field, TextView why) {
  throw Error("Schema: campul " + Quoted(field.name) + " " + Text(why));
}

bool HasSize(FieldType type) noexcept {
  return type == FieldType::Text || type == FieldType::WideText;
}

void CheckField(const FieldDef& field) {
  constexpr auto kAllFlags = kKey | kRequired | kReadOnly | kCheck | kNoCheck;
  if (!IsIdentifier(field.name)) {
    Refuse(field, "nu are un nume permis");
  }
  if (static_cast<std::size_t>(field.type) >= kTraits.size() || !Has(kAllFlags, field.flags)) {
    Refuse(field, "are un tip sau un indicator care nu exista");
  }
  const bool hasCollation = field.type == FieldType::Text || field.type == FieldType::Memo;
  if (field.collation > (hasCollation ? Collation::Binary : Collation::Romanian)) {
    Refuse(field, "are o ordine a textelor nepermisa");
  }
  const std::int32_t most = field.type == FieldType::WideText ? kMostWideUnits : kMostTextBytes;
  if (field.size < 0 || (HasSize(field.type) ? field.size > most : field.size != 0)) {
    Text why = "are lungimea nepermisa ";
    AppendDecimal(why, field.size);
    Refuse(field, why);
  }
  const bool cannotBeKey = field.type == FieldType::Double || TraitsOf(field.type).storage == Storage::Large;
  if (Has(field.flags, kKey) && cannotBeKey) {
    Refuse(field, Text("de tip ") + TraitsOf(field.type).name + " nu poate fi cheie");
  }
  if (Has(field.flags, kCheck) && Has(field.flags, kNoCheck)) {
    Refuse(field, "are doi indicatori care se contrazic");
  }
  if (!std::holds_alternative<Null>(field.defaultValue)) {
    MakeCell(field, field.defaultValue, "Schema");
  }
}

}  // namespace

bool IsIdentifier(TextView name) noexcept {
  const auto isLetterOrSign = [](char character) {
    return character == '_' || IsLetter(static_cast<unsigned char>(character));
  };
  return !name.empty() && name.size() <= kLongestName && isLetterOrSign(name[0]) &&
         std::ranges::all_of(name,
                             [&](char character) { return isLetterOrSign(character) || ascii::IsDigit(character); });
}

Text FoldName(TextView name) {
  Text folded(name);
  std::ranges::transform(folded, folded.begin(), [](char character) {
    return static_cast<char>(LowerCase(static_cast<unsigned char>(character)));
  });
  return folded;
}

Text Quoted(TextView name) {
  Text quoted = "\"";
  for (const char character : name.substr(0, kLongestName)) {
    quoted += static_cast<unsigned char>(character) < ' ' ? ' ' : character;
  }
  return quoted + "\"";
}

SchemaData::SchemaData(std::vector<FieldDef> definitions) : fields(std::move(definitions)) {
  if (fields.empty() || fields.size() > kMostFields) {
    Text message = "Schema: un set de date are 1..1024 campuri, nu ";
    AppendDecimal(message, fields.size());
    throw Error(message);
  }
  for (std::size_t i = 0; i < fields.size(); ++i) {
    CheckField(fields[i]);
    names.emplace_back(FoldName(fields[i].name), static_cast<std::uint16_t>(i));
    if (Has(fields[i].flags, kKey)) {
      keyFields.push_back(static_cast<std::uint16_t>(i));
    }
  }
  std::ranges::sort(names);
  const auto twice = std::ranges::adjacent_find(names, {}, &std::pair<Text, std::uint16_t>::first);
  if (twice != names.end()) {
    Refuse(fields[std::next(twice)->second], "apare de doua ori");
  }
}

std::optional<std::size_t> SchemaData::IndexOf(TextView name) const noexcept {
  // Compared letter by letter, so that nothing is allocated for a look-up.
  const auto isBefore = [](TextView left, TextView right) {
    return std::ranges::lexicographical_compare(
        left, right, {}, [](char c) { return static_cast<unsigned char>(c); },
        [](char c) { return LowerCase(static_cast<unsigned char>(c)); });
  };
  const auto found =
      std::ranges::lower_bound(names, name, isBefore, [](const auto& entry) -> TextView { return entry.first; });
  const auto sameAs = [](char folded, char given) {
    return static_cast<unsigned char>(folded) == LowerCase(static_cast<unsigned char>(given));
  };
  if (found == names.end() || !std::ranges::equal(found->first, name, sameAs)) {
    return std::nullopt;
  }
  return found->second;
}

}  // namespace kiv::store

namespace kiv {

Schema::Schema(std::initializer_list<FieldDef> fields) : Schema(std::vector<FieldDef>(fields)) {}
Schema::Schema(std::vector<FieldDef> fields) : data_(std::make_shared<store::SchemaData>(std::move(fields))) {}

std::span<const FieldDef> Schema::Fields() const noexcept {
  return data_->fields;
}
std::optional<std::size_t> Schema::IndexOf(TextView name) const noexcept {
  return data_->IndexOf(name);
}
std::span<const std::uint16_t> Schema::KeyFields() const noexcept {
  return data_->keyFields;
}

}  // namespace kiv
