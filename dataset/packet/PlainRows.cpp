#include "dataset/packet/PlainRows.h"

#include <algorithm>

#include "dataset/packet/ShortValues.h"
#include "dataset/packet/ValueText.h"
#include "dataset/store/SchemaData.h"

namespace kiv::packet {

using store::Storage;
using store::TraitsOf;

PlainRows::PlainRows(const XmlFields& fields, store::BlockLoader& loader)
    : fields_(fields), loader_(loader), holders_(fields.fields.size()) {
  for (std::size_t i = 0; i < fields.fields.size(); ++i) {
    const FieldDef& field = fields.fields[i];
    places_.push_back(static_cast<std::uint16_t>(i));
    attributes_.push_back({.front = KnownBytes(" " + fields.attributes[i] + "=\""),
                           .field = static_cast<std::uint16_t>(i),
                           .type = field.type,
                           .mayBeNull = !Has(field.flags, kRequired) && !Has(field.flags, kKey),
                           .longest = field.size == 0 ? store::Texts::kLongest : static_cast<std::size_t>(field.size)});
  }
}

const char* PlainRows::Take(const XmlPull& in, Limits& limits) {
  const char* behind = in.Ahead().data();
  const char* const end = behind + in.Ahead().size();
  const char* row = behind;
  try {
    for (;;) {
      for (row = behind; XmlPull::IsBlank(*row);) {
        ++row;
      }
      const char* const rowEnd = row[0] == '<' && row[1] == 'r' ? ReadRow(row + 2) : nullptr;
      if (rowEnd == nullptr || rowEnd > end || !Spend(limits)) {
        return behind;
      }
      AddRow();
      behind = rowEnd;
    }
  } catch (const Error& error) {
    in.RefuseAt(row, error.what());
  }
}

bool PlainRows::Spend(Limits& limits) const noexcept {
  std::uint64_t size = fields_.fields.size() * sizeof(std::uint64_t);
  for (const Bytes& bytes : bytes_) {
    size += bytes.bytes.size();
  }
  if (limits.rows == 0 || size > limits.bytes) {
    return false;
  }
  --limits.rows;
  limits.bytes -= size;
  return true;
}

void PlainRows::Follow(std::span<const std::uint16_t> fields) {
  const auto placeOf = [this](std::uint16_t field) { return places_[field]; };
  if (std::ranges::is_sorted(fields, {}, placeOf)) {
    return;
  }
  // Those that the row has no value for come last, in the order that they had.
  for (std::uint16_t& place : places_) {
    place = static_cast<std::uint16_t>(place + fields.size());
  }
  for (std::size_t i = 0; i < fields.size(); ++i) {
    places_[fields[i]] = static_cast<std::uint16_t>(i);
  }
  std::ranges::sort(attributes_, {}, [&](const Attribute& attribute) { return placeOf(attribute.field); });
  for (std::size_t i = 0; i < attributes_.size(); ++i) {
    places_[attributes_[i].field] = static_cast<std::uint16_t>(i);
  }
}

/// Reads a row's attributes; returns where it ends, null where it is not plain. Only values of fixed width are put
/// down, which hurts nobody until the row is ended.
const char* PlainRows::ReadRow(const char* at) {
  loader_.BeginRow();
  bytes_.clear();
  nulls_.clear();
  autoIncs_.clear();
  for (const Attribute& attribute : attributes_) {
    if (attribute.front.Begins(at)) {
      at = ReadValue(attribute, at + attribute.front.Size());
      if (at == nullptr) {
        return nullptr;
      }
    } else if (attribute.mayBeNull) {
      nulls_.push_back(attribute.field);
    } else {
      return nullptr;
    }
  }
  return at[0] == '/' && at[1] == '>' ? at + 2 : nullptr;
}

const char* PlainRows::ReadValue(const Attribute& attribute, const char* at) {
  const PlainPiece piece = FrontOfValue(at);
  const std::string_view text(at, static_cast<std::size_t>(piece.end - at));
  if (*piece.end != '"') {
    return nullptr;
  }
  if (attribute.type == FieldType::Text && piece.isAscii && text.size() <= attribute.longest) {
    bytes_.push_back({attribute.field, text});
  } else if (std::uint64_t bits = 0;
             attribute.type != FieldType::AutoInc && ReadShortValue(attribute.type, text, kPlainNumbers.point, bits)) {
    loader_.PutFixed(attribute.field, bits);
  } else if (TraitsOf(attribute.type).storage == Storage::Fixed) {
    store::Cell cell;
    if (!packet::ReadValue(attribute.type, text, cell)) {
      return nullptr;
    }
    loader_.PutFixed(attribute.field, cell);
    if (attribute.type == FieldType::AutoInc) {
      autoIncs_.push_back(cell);
    }
  } else if (!TakeOther(attribute, text)) {
    return nullptr;
  }
  return piece.end + 1;
}

bool PlainRows::TakeOther(const Attribute& attribute, std::string_view text) {
  store::Cell cell;
  try {
    if (!holders_[attribute.field].Take(attribute.type, text, cell)) {
      return false;
    }
    store::CheckCell(fields_.fields[attribute.field], cell, {});
  } catch (const Error&) {
    return false;  // the long way says so at the right place
  }
  bytes_.push_back({attribute.field, cell.bytes});
  return true;
}

void PlainRows::AddRow() {
  for (const Bytes& bytes : bytes_) {
    loader_.PutBytes(bytes.field, bytes.bytes);
  }
  for (const std::uint16_t field : nulls_) {
    loader_.PutNull(field);
  }
  for (const store::Cell& cell : autoIncs_) {
    loader_.NoteAutoInc(cell);
  }
  loader_.EndRow();
}

}  // namespace kiv::packet
