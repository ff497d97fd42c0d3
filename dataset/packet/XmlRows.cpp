#include "dataset/packet/XmlRows.h"

#include <algorithm>

#include "dataset/packet/XmlNames.h"

namespace kiv::packet {

using store::Storage;
using store::StoredState;
using store::TraitsOf;

XmlRows::XmlRows(XmlElements& in, const XmlFields& fields, const ReadLimits& limits, store::BlockLoader& loader)
    : in_(in),
      fields_(fields),
      limits_(limits),
      loader_(loader),
      plain_(fields, loader),
      bytesLeft_(limits.maxBytes),
      now_(fields.fields.size()),
      was_(fields.fields.size()) {}

void XmlRows::Read() {
  if (!in_.IsEmptyElement()) {
    TakePlainRows();
  }
  while (in_.NextElement() == Event::Start) {
    if (in_.Name() != "r") {
      in_.Refuse("trebuie elementul <r>");
    }
    ReadRow();
    TakePlainRows();
  }
}

/// The rows that have come and are written plainly; what comes behind them is read the long way.
void XmlRows::TakePlainRows() {
  PlainRows::Limits left{limits_.maxRows - rows_, bytesLeft_};
  const char* const behind = plain_.Take(in_, left);
  in_.GoTo(behind);
  rows_ = limits_.maxRows - left.rows;
  bytesLeft_ = left.bytes;
}

void XmlRows::Spend(std::uint64_t bytes) {
  if (bytes > bytesLeft_) {
    in_.Refuse("textul ar ocupa mai multa memorie decat este permis");
  }
  bytesLeft_ -= bytes;
}

/// The field of an attribute; mostly the one behind the last one.
std::size_t XmlRows::FieldOf(std::string_view attribute) {
  for (std::size_t i = 0; i < fields_.attributes.size(); ++i) {
    const std::size_t field = nextField_++;
    nextField_ = nextField_ == fields_.attributes.size() ? 0 : nextField_;
    if (fields_.attributes[field] == attribute) {
      return field;
    }
  }
  in_.RefuseAt(attribute.data(), ShownPiece(attribute) + " nu este un camp");
}

void XmlRows::TakeValue(XmlRowValues& values, std::size_t field, std::string_view text, bool isBase64) {
  if (values.setBy[field] == rows_) {
    in_.Refuse("campul " + store::Quoted(fields_.fields[field].name) + " are doua valori");
  }
  values.setBy[field] = rows_;
  const FieldType type = fields_.fields[field].type;
  bool isValue = false;
  try {
    XmlValue& holder = values.holders[field];
    isValue =
        isBase64 ? holder.TakeBase64(type, text, values.cells[field]) : holder.Take(type, text, values.cells[field]);
  } catch (const ConversionError&) {
    isValue = false;  // letters that Windows-1250 does not have
  }
  if (!isValue) {
    in_.RefuseAt(isBase64 ? in_.TokenStart() : text.data(), "campul " + store::Quoted(fields_.fields[field].name) +
                                                                ": " + ShownPiece(text) + " nu este o valoare de tip " +
                                                                TraitsOf(type).name);
  }
  Spend(values.cells[field].bytes.size());
}

StoredState XmlRows::TakeRowAttributes() {
  StoredState state = StoredState::Unmodified;
  bool hasState = false;
  order_.clear();
  for (const XmlPull::Attribute& attribute : in_.Attributes()) {
    if (attribute.name == kXmlState) {
      if (hasState) {
        in_.Refuse("un atribut nu este cunoscut sau apare de doua ori");
      }
      hasState = true;
      state = static_cast<StoredState>(in_.IndexOf(attribute.value, kXmlStates));
    } else {
      const std::size_t field = FieldOf(attribute.name);
      TakeValue(now_, field, attribute.value, false);
      order_.push_back(static_cast<std::uint16_t>(field));
    }
  }
  plain_.Follow(order_);
  return state;
}

void XmlRows::ReadRow() {
  ++rows_;
  if (rows_ > limits_.maxRows) {
    in_.Refuse("textul are mai multe randuri decat este permis");
  }
  Spend(fields_.fields.size() * sizeof(std::uint64_t));
  std::ranges::fill(now_.cells, Cell{});
  nextField_ = 0;
  hasOriginals_ = false;
  const StoredState state = TakeRowAttributes();
  if (in_.IsEmptyElement()) {
    AddRow(state);
    in_.NextElement();
    return;
  }
  // What comes next takes the place of the text that values may still lie in.
  for (std::size_t i = 0; i < fields_.fields.size(); ++i) {
    now_.holders[i].Keep(now_.cells[i]);
  }
  ReadElements(state);
  AddRow(state);
}

/// <v> and <was> up to the end of the row.
void XmlRows::ReadElements(StoredState state) {
  while (in_.NextElement() == Event::Start) {
    if (in_.Name() == "v") {
      ReadBytes(now_);
    } else if (in_.Name() == "was" && state == StoredState::Modified && !hasOriginals_) {
      hasOriginals_ = true;
      ReadOriginals();
    } else {
      in_.Refuse("randul are un element care nu este cunoscut sau nu are loc");
    }
  }
}

/// <v f="obs">, the bytes of a value.
void XmlRows::ReadBytes(XmlRowValues& values) {
  const std::string attribute = in_.TakeAttribute("f");
  in_.EndOfAttributes();
  const auto found = std::ranges::find(fields_.attributes, attribute);
  if (found == fields_.attributes.end()) {
    in_.Refuse(ShownPiece(attribute) + " nu este un camp");
  }
  text_.clear();
  Event event = in_.Next();
  for (; event == Event::Text; event = in_.Next()) {
    if (text_.size() + in_.Content().size() > 2 * bytesLeft_) {
      Spend(bytesLeft_ + 1);
    }
    text_ += in_.Content();
  }
  if (event != Event::End) {
    in_.Refuse("elementul nu are voie sa tina altele");
  }
  TakeValue(values, static_cast<std::size_t>(found - fields_.attributes.begin()), text_, true);
}

void XmlRows::ReadOriginals() {
  std::ranges::fill(was_.cells, Cell{});
  nextField_ = 0;
  bool hasNulls = false;
  for (const XmlPull::Attribute& attribute : in_.Attributes()) {
    if (attribute.name != kXmlNulls) {
      TakeValue(was_, FieldOf(attribute.name), attribute.value, false);
    } else if (!hasNulls) {
      hasNulls = true;
      TakeNulls(attribute.value);
    } else {
      in_.Refuse("un atribut nu este cunoscut sau apare de doua ori");
    }
  }
  for (std::size_t i = 0; i < fields_.fields.size(); ++i) {
    was_.holders[i].Keep(was_.cells[i]);
  }
  while (in_.NextElement() == Event::Start) {
    if (in_.Name() != "v") {
      in_.Refuse("randul are un element care nu este cunoscut sau nu are loc");
    }
    ReadBytes(was_);
  }
}

/// The names of the fields that were null.
void XmlRows::TakeNulls(std::string_view names) {
  while (!names.empty()) {
    const std::size_t end = std::min(names.find(' '), names.size());
    const std::size_t field = FieldOf(names.substr(0, end));
    if (was_.setBy[field] == rows_) {
      in_.Refuse("campul " + store::Quoted(fields_.fields[field].name) + " are doua valori");
    }
    was_.setBy[field] = rows_;
    names.remove_prefix(std::min(end + 1, names.size()));
  }
}

void XmlRows::AddRow(StoredState state) {
  if ((state == StoredState::Modified) != hasOriginals_) {
    in_.Refuse("un rand modificat are un element <was>, si numai el");
  }
  const auto row = static_cast<std::uint32_t>(rows_ - 1);
  in_.RefuseWhere([&] {
    loader_.AddRow(now_.cells, state);
    if (state == StoredState::Modified) {
      AddOriginals(row);
    } else if (state == StoredState::Deleted) {
      loader_.AddRecord(ChangeKind::Delete, row, {});
    } else if (state == StoredState::Inserted) {
      inserted_.push_back(row);
    }
  });
}

void XmlRows::AddOriginals(std::uint32_t row) {
  old_.clear();
  bool hasOtherKey = false;
  for (std::size_t i = 0; i < fields_.fields.size(); ++i) {
    if (was_.setBy[i] != rows_) {
      was_.cells[i] = now_.cells[i];
      continue;
    }
    if (store::AreEqual(fields_.fields[i].type, was_.cells[i], now_.cells[i])) {
      in_.Refuse("campul " + store::Quoted(fields_.fields[i].name) + " a fost ce este si acum");
    }
    hasOtherKey = hasOtherKey || Has(fields_.fields[i].flags, kKey);
    old_.push_back({static_cast<std::uint16_t>(i), was_.cells[i]});
  }
  if (hasOtherKey) {
    keyChanges_.Add(row, KeyOf(was_.cells), KeyOf(now_.cells), old_);
  } else {
    AddChange(ChangeKind::Update, row, old_);
  }
}

void XmlRows::AddChange(ChangeKind kind, std::uint32_t row, std::vector<store::BlockLoader::OldValue>& old) {
  for (store::BlockLoader::OldValue& value : old) {
    loader_.PutOldBytes(value.field, value.cell);
  }
  loader_.AddRecord(kind, row, old);
}

std::string XmlRows::KeyOf(std::span<const Cell> cells) const {
  std::string key;
  for (std::size_t i = 0; i < fields_.fields.size(); ++i) {
    if (Has(fields_.fields[i].flags, kKey)) {
      const bool isFixed = TraitsOf(fields_.fields[i].type).storage == Storage::Fixed;
      key += isFixed ? std::to_string(cells[i].bits) + " " + std::to_string(cells[i].more)
                     : std::to_string(cells[i].bytes.size()) + " " + std::string(cells[i].bytes);
      key += ' ';
    }
  }
  return key;
}

/// A row takes a key after the one that leaves it, and new rows come last, so that each change can be undone. Of rows
/// that have exchanged their keys one is away meanwhile: nobody knows which key it had on its way.
void XmlRows::AddRecordsInOrder() {
  keyChanges_.ForEachInOrder(
      [&](const KeyChanges::Change& change) { loader_.AddRecord(ChangeKind::Delete, change.row, {}); },
      [&](KeyChanges::Change& change) {
        AddChange(change.hasLeft ? ChangeKind::Restore : ChangeKind::Update, change.row, change.old);
      });
  for (const std::uint32_t row : inserted_) {
    loader_.AddRecord(ChangeKind::Insert, row, {});
  }
}

}  // namespace kiv::packet
