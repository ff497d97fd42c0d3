#include <algorithm>
#include <deque>
#include <optional>
#include <unordered_map>

#include "core/Numbers.h"
#include "dataset/packet/Base64.h"
#include "dataset/packet/FileSource.h"
#include "dataset/packet/Unicode.h"
#include "dataset/packet/ValueText.h"
#include "dataset/packet/XmlNames.h"
#include "dataset/packet/XmlPull.h"
#include "dataset/store/BlockLoader.h"
#include "kivtools/dataset/Xml.h"
#include "platform/Paths.h"

namespace kiv {
namespace {

using packet::XmlPull;
using store::BlockLoader;
using store::Cell;
using store::Storage;
using store::StoredState;
using store::TraitsOf;

using Event = XmlPull::Event;

/// Turns an attribute's text into a value, whose bytes it keeps.
class ValueHolder {
 public:
  /// False where the text is no value of that type.
  bool Take(FieldType type, std::string_view utf8, Cell& cell) {
    if (TraitsOf(type).storage == Storage::Fixed) {
      return packet::ReadValue(type, utf8, cell);
    }
    cell = {.bytes = utf8, .isNull = false};
    if (type == FieldType::WideText) {
      wide_.clear();
      AppendUtf16(wide_, utf8);
      return TakeWide(cell);
    }
    if (std::ranges::any_of(utf8, [](char character) { return static_cast<unsigned char>(character) >= 0x80; })) {
      bytes_ = FromUtf8(utf8);
      cell.bytes = bytes_;
    }
    return type != FieldType::Blob;
  }
  /// The same for an element's base64.
  bool TakeBase64(FieldType type, std::string_view text, Cell& cell) {
    bytes_.clear();
    cell = {.isNull = false};
    if (TraitsOf(type).storage == Storage::Fixed || !packet::AppendFromBase64(bytes_, text)) {
      return false;
    }
    cell.bytes = bytes_;
    if (type == FieldType::WideText) {
      wide_.assign(bytes_.size() / 2, u'\0');
      std::memcpy(wide_.data(), bytes_.data(), wide_.size() * 2);
      return bytes_.size() % 2 == 0 && TakeWide(cell);
    }
    return true;
  }
  /// Keeps bytes that are still where the text was.
  void Keep(Cell& cell) {
    if (!cell.isNull && !cell.bytes.empty() && cell.bytes.data() != bytes_.data() &&
        cell.bytes.data() != reinterpret_cast<const char*>(wide_.data())) {
      bytes_.assign(cell.bytes);
      cell.bytes = bytes_;
    }
  }

 private:
  bool TakeWide(Cell& cell) {
    cell.bytes = {reinterpret_cast<const char*>(wide_.data()), wide_.size() * sizeof(char16_t)};
    return true;
  }
  std::string bytes_;
  std::u16string wide_;
};

/// The values of a row or of its originals as they come in.
struct RowValues {
  std::vector<Cell> cells;
  std::vector<ValueHolder> holders;
  std::vector<std::uint64_t> setBy;  // by field, the number of the row that has set it last

  explicit RowValues(std::size_t fields) : cells(fields), holders(fields), setBy(fields) {}
};

/// Rows that have another key than they had, until all of them are known.
class KeyChanges {
 public:
  struct Change {
    std::uint32_t row;
    std::string newKey;
    std::vector<BlockLoader::OldValue> old;
    std::deque<std::string> bytes;  // of the old values
    enum class Visit : std::uint8_t { None, Begun, Done } visit = Visit::None;
    bool hasLeft = false;
  };

  void Add(std::uint32_t row, const std::string& oldKey, std::string newKey,
           std::span<const BlockLoader::OldValue> old) {
    Change& change = changes_.emplace_back(Change{row, std::move(newKey), {old.begin(), old.end()}, {}});
    for (BlockLoader::OldValue& value : change.old) {
      value.cell.bytes = change.bytes.emplace_back(value.cell.bytes);
    }
    byOldKey_.emplace(oldKey, &change);
  }
  /// Takes each change after the one that leaves its key. Where they go round in a ring, one of them leaves first.
  template <class Leave, class Take>
  void ForEachInOrder(Leave leave, Take take) {
    std::vector<Change*> waiting;
    for (Change& first : changes_) {
      for (Change* change = &first; change != nullptr && change->visit == Change::Visit::None;) {
        change->visit = Change::Visit::Begun;
        waiting.push_back(change);
        const auto leaving = byOldKey_.find(change->newKey);
        change = leaving == byOldKey_.end() ? nullptr : leaving->second;
        if (change != nullptr && change->visit == Change::Visit::Begun) {
          change->hasLeft = true;
          leave(*change);
        }
      }
      for (; !waiting.empty(); waiting.pop_back()) {
        waiting.back()->visit = Change::Visit::Done;
        take(*waiting.back());
      }
    }
  }

 private:
  std::deque<Change> changes_;
  std::unordered_map<std::string, Change*> byOldKey_;
};

class XmlReader {
 public:
  XmlReader(const PacketSource& source, const Text& operation, const ReadLimits& limits)
      : in_(source, operation), limits_(limits), bytesLeft_(limits.maxBytes) {}

  std::unique_ptr<store::Store> Read();

 private:
  Event Next();
  void ExpectStart(std::string_view name);
  void ExpectEnd();
  std::string TakeAttribute(std::string_view name);
  void EndOfAttributes() const;
  void ReadField();
  Value ReadDefault(const FieldDef& field);
  FieldFlags ReadFlags();
  [[nodiscard]] std::size_t IndexOf(std::string_view name, std::span<const std::string_view> names) const;
  [[nodiscard]] std::size_t FieldOf(std::string_view attribute);
  void ReadRow();
  void TakeValue(RowValues& values, std::size_t field, std::string_view text, bool isBase64);
  StoredState TakeRowAttributes();
  void ReadElements(StoredState state);
  void ReadBytes(RowValues& values);
  void ReadOriginals();
  void TakeNulls(std::string_view names);
  void AddRow(StoredState state);
  void AddOriginals(std::uint32_t row);
  void AddChange(ChangeKind kind, std::uint32_t row, std::vector<BlockLoader::OldValue>& old);
  [[nodiscard]] std::string KeyOf(std::span<const Cell> cells) const;
  void AddRecordsInOrder();
  void Spend(std::uint64_t bytes);

  XmlPull in_;
  const ReadLimits& limits_;
  std::uint64_t bytesLeft_;
  std::size_t taken_ = 0;  // of the present element's attributes
  Text name_;
  std::vector<FieldDef> fields_;
  std::vector<std::string> attributes_;
  std::size_t nextField_ = 0;
  std::uint64_t rows_ = 0;
  bool hasOriginals_ = false;
  std::optional<RowValues> now_;
  std::optional<RowValues> was_;
  std::optional<BlockLoader> loader_;
  std::vector<BlockLoader::OldValue> old_;
  KeyChanges keyChanges_;
  std::vector<std::uint32_t> inserted_;
  std::string text_;
};

void XmlReader::Spend(std::uint64_t bytes) {
  if (bytes > bytesLeft_) {
    in_.Refuse("textul ar ocupa mai multa memorie decat este permis");
  }
  bytesLeft_ -= bytes;
}

/// The next token that is no blank.
Event XmlReader::Next() {
  for (;;) {
    const Event event = in_.Next();
    taken_ = 0;
    if (event != Event::Text) {
      return event;
    }
    if (const auto text = std::ranges::find_if_not(in_.Content(), XmlPull::IsBlank); text != in_.Content().end()) {
      in_.RefuseAt(&*text, "text unde trebuie elemente");
    }
  }
}

void XmlReader::ExpectStart(std::string_view name) {
  if (Next() != Event::Start || in_.Name() != name) {
    in_.Refuse("trebuie elementul <" + Text(name) + ">");
  }
}

void XmlReader::ExpectEnd() {
  if (Next() != Event::End) {
    in_.Refuse("elementul nu are voie sa tina altele");
  }
}

std::string XmlReader::TakeAttribute(std::string_view name) {
  const auto found = std::ranges::find(in_.Attributes(), name, &XmlPull::Attribute::name);
  if (found == in_.Attributes().end()) {
    return {};
  }
  ++taken_;
  return std::string(found->value);
}

void XmlReader::EndOfAttributes() const {
  if (taken_ != in_.Attributes().size()) {
    in_.Refuse("un atribut nu este cunoscut sau apare de doua ori");
  }
}

std::size_t XmlReader::IndexOf(std::string_view name, std::span<const std::string_view> names) const {
  const auto found = std::ranges::find(names, name);
  if (found == names.end()) {
    in_.Refuse(packet::ShownPiece(name) + " nu este cunoscut");
  }
  return static_cast<std::size_t>(found - names.begin());
}

FieldFlags XmlReader::ReadFlags() {
  FieldFlags flags = FieldFlags::None;
  const auto take = [&](std::string_view name, FieldFlags isOne, FieldFlags isZero) {
    const std::string value = TakeAttribute(name);
    if (!value.empty() && value != "0" && value != "1") {
      in_.Refuse(packet::ShownPiece(value) + " nu este 0 sau 1");
    }
    flags = value.empty() ? flags : flags | (value == "1" ? isOne : isZero);
  };
  take("key", kKey, FieldFlags::None);
  take("required", kRequired, FieldFlags::None);
  take("readonly", kReadOnly, FieldFlags::None);
  take("check", kCheck, kNoCheck);
  return flags;
}

Value XmlReader::ReadDefault(const FieldDef& field) {
  const bool isBase64 =
      std::ranges::find(in_.Attributes(), "default64", &XmlPull::Attribute::name) != in_.Attributes().end();
  if (!isBase64 &&
      std::ranges::find(in_.Attributes(), "default", &XmlPull::Attribute::name) == in_.Attributes().end()) {
    return {};
  }
  const std::string text = TakeAttribute(isBase64 ? "default64" : "default");
  ValueHolder holder;
  Cell cell;
  if (!(isBase64 ? holder.TakeBase64(field.type, text, cell) : holder.Take(field.type, text, cell))) {
    in_.Refuse("valoarea implicita nu este una a campului");
  }
  return store::ValueOf(field.type, cell);
}

void XmlReader::ReadField() {
  const Text name = FromUtf8(TakeAttribute("name"));
  const std::string attribute = TakeAttribute("attr");
  FieldDef field(name, static_cast<FieldType>(IndexOf(TakeAttribute("type"), packet::kXmlTypes)));
  if (const std::string size = TakeAttribute("size"); !size.empty()) {
    Cell cell;
    if (!packet::ReadValue(FieldType::Int32, size, cell)) {
      in_.Refuse(packet::ShownPiece(size) + " nu este o lungime");
    }
    field.size = static_cast<std::int32_t>(cell.bits);
  }
  if (const std::string collation = TakeAttribute("collation"); !collation.empty()) {
    field.collation = static_cast<Collation>(IndexOf(collation, packet::kXmlCollations));
  }
  field.flags = ReadFlags();
  field.defaultValue = ReadDefault(field);
  EndOfAttributes();
  attributes_.push_back(packet::XmlAttributeOf(fields_.size(), name));
  if (!attribute.empty() && attribute != attributes_.back()) {
    in_.Refuse("campul " + store::Quoted(name) + " are alt atribut decat " + attributes_.back());
  }
  if (fields_.size() == std::min<std::size_t>(limits_.maxFields, store::kMostFields)) {
    in_.Refuse("textul are mai multe campuri decat este permis");
  }
  fields_.push_back(std::move(field));
  ExpectEnd();
}

/// The field of an attribute; mostly the one behind the last one.
std::size_t XmlReader::FieldOf(std::string_view attribute) {
  for (std::size_t i = 0; i < attributes_.size(); ++i) {
    const std::size_t field = nextField_++;
    nextField_ = nextField_ == attributes_.size() ? 0 : nextField_;
    if (attributes_[field] == attribute) {
      return field;
    }
  }
  in_.RefuseAt(attribute.data(), packet::ShownPiece(attribute) + " nu este un camp");
}

void XmlReader::TakeValue(RowValues& values, std::size_t field, std::string_view text, bool isBase64) {
  if (values.setBy[field] == rows_) {
    in_.Refuse("campul " + store::Quoted(fields_[field].name) + " are doua valori");
  }
  values.setBy[field] = rows_;
  const FieldType type = fields_[field].type;
  bool isValue = false;
  try {
    ValueHolder& holder = values.holders[field];
    isValue =
        isBase64 ? holder.TakeBase64(type, text, values.cells[field]) : holder.Take(type, text, values.cells[field]);
  } catch (const ConversionError&) {
    isValue = false;  // letters that Windows-1250 does not have
  }
  if (!isValue) {
    in_.RefuseAt(isBase64 ? in_.TokenStart() : text.data(), "campul " + store::Quoted(fields_[field].name) + ": " +
                                                                packet::ShownPiece(text) +
                                                                " nu este o valoare de tip " + TraitsOf(type).name);
  }
  Spend(values.cells[field].bytes.size());
}

StoredState XmlReader::TakeRowAttributes() {
  StoredState state = StoredState::Unmodified;
  bool hasState = false;
  for (const XmlPull::Attribute& attribute : in_.Attributes()) {
    if (attribute.name == packet::kXmlState) {
      if (hasState) {
        in_.Refuse("un atribut nu este cunoscut sau apare de doua ori");
      }
      hasState = true;
      state = static_cast<StoredState>(IndexOf(attribute.value, packet::kXmlStates));
    } else {
      TakeValue(*now_, FieldOf(attribute.name), attribute.value, false);
    }
  }
  return state;
}

void XmlReader::ReadRow() {
  ++rows_;
  if (rows_ > limits_.maxRows) {
    in_.Refuse("textul are mai multe randuri decat este permis");
  }
  Spend(fields_.size() * sizeof(std::uint64_t));
  std::ranges::fill(now_->cells, Cell{});
  nextField_ = 0;
  hasOriginals_ = false;
  const StoredState state = TakeRowAttributes();
  if (in_.IsEmptyElement()) {
    AddRow(state);
    Next();
    return;
  }
  // What comes next takes the place of the text that values may still lie in.
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    now_->holders[i].Keep(now_->cells[i]);
  }
  ReadElements(state);
  AddRow(state);
}

/// <v> and <was> up to the end of the row.
void XmlReader::ReadElements(StoredState state) {
  while (Next() == Event::Start) {
    if (in_.Name() == "v") {
      ReadBytes(*now_);
    } else if (in_.Name() == "was" && state == StoredState::Modified && !hasOriginals_) {
      hasOriginals_ = true;
      ReadOriginals();
    } else {
      in_.Refuse("randul are un element care nu este cunoscut sau nu are loc");
    }
  }
}

/// <v f="obs">, the bytes of a value.
void XmlReader::ReadBytes(RowValues& values) {
  const std::string attribute = TakeAttribute("f");
  EndOfAttributes();
  const auto found = std::ranges::find(attributes_, attribute);
  if (found == attributes_.end()) {
    in_.Refuse(packet::ShownPiece(attribute) + " nu este un camp");
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
  TakeValue(values, static_cast<std::size_t>(found - attributes_.begin()), text_, true);
}

void XmlReader::ReadOriginals() {
  std::ranges::fill(was_->cells, Cell{});
  nextField_ = 0;
  bool hasNulls = false;
  for (const XmlPull::Attribute& attribute : in_.Attributes()) {
    if (attribute.name != packet::kXmlNulls) {
      TakeValue(*was_, FieldOf(attribute.name), attribute.value, false);
    } else if (!hasNulls) {
      hasNulls = true;
      TakeNulls(attribute.value);
    } else {
      in_.Refuse("un atribut nu este cunoscut sau apare de doua ori");
    }
  }
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    was_->holders[i].Keep(was_->cells[i]);
  }
  while (Next() == Event::Start) {
    if (in_.Name() != "v") {
      in_.Refuse("randul are un element care nu este cunoscut sau nu are loc");
    }
    ReadBytes(*was_);
  }
}

/// The names of the fields that were null.
void XmlReader::TakeNulls(std::string_view names) {
  while (!names.empty()) {
    const std::size_t end = std::min(names.find(' '), names.size());
    const std::size_t field = FieldOf(names.substr(0, end));
    if (was_->setBy[field] == rows_) {
      in_.Refuse("campul " + store::Quoted(fields_[field].name) + " are doua valori");
    }
    was_->setBy[field] = rows_;
    names.remove_prefix(std::min(end + 1, names.size()));
  }
}

void XmlReader::AddRow(StoredState state) {
  if ((state == StoredState::Modified) != hasOriginals_) {
    in_.Refuse("un rand modificat are un element <was>, si numai el");
  }
  const auto row = static_cast<std::uint32_t>(rows_ - 1);
  try {
    loader_->AddRow(now_->cells, state);
    if (state == StoredState::Modified) {
      AddOriginals(row);
    } else if (state == StoredState::Deleted) {
      loader_->AddRecord(ChangeKind::Delete, row, {});
    } else if (state == StoredState::Inserted) {
      inserted_.push_back(row);
    }
  } catch (const PacketError&) {
    throw;
  } catch (const Error& error) {
    in_.Refuse(error.what());
  }
}

void XmlReader::AddOriginals(std::uint32_t row) {
  old_.clear();
  bool hasOtherKey = false;
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    if (was_->setBy[i] != rows_) {
      was_->cells[i] = now_->cells[i];
      continue;
    }
    if (store::AreEqual(fields_[i].type, was_->cells[i], now_->cells[i])) {
      in_.Refuse("campul " + store::Quoted(fields_[i].name) + " a fost ce este si acum");
    }
    hasOtherKey = hasOtherKey || Has(fields_[i].flags, kKey);
    old_.push_back({static_cast<std::uint16_t>(i), was_->cells[i]});
  }
  if (hasOtherKey) {
    keyChanges_.Add(row, KeyOf(was_->cells), KeyOf(now_->cells), old_);
  } else {
    AddChange(ChangeKind::Update, row, old_);
  }
}

void XmlReader::AddChange(ChangeKind kind, std::uint32_t row, std::vector<BlockLoader::OldValue>& old) {
  for (BlockLoader::OldValue& value : old) {
    loader_->PutOldBytes(value.field, value.cell);
  }
  loader_->AddRecord(kind, row, old);
}

std::string XmlReader::KeyOf(std::span<const Cell> cells) const {
  std::string key;
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    if (Has(fields_[i].flags, kKey)) {
      const bool isFixed = TraitsOf(fields_[i].type).storage == Storage::Fixed;
      key += isFixed ? std::to_string(cells[i].bits) + " " + std::to_string(cells[i].more)
                     : std::to_string(cells[i].bytes.size()) + " " + std::string(cells[i].bytes);
      key += ' ';
    }
  }
  return key;
}

/// A row takes a key after the one that leaves it, and new rows come last, so that each change can be undone. Of rows
/// that have exchanged their keys one is away meanwhile: nobody knows which key it had on its way.
void XmlReader::AddRecordsInOrder() {
  keyChanges_.ForEachInOrder(
      [&](const KeyChanges::Change& change) { loader_->AddRecord(ChangeKind::Delete, change.row, {}); },
      [&](KeyChanges::Change& change) {
        AddChange(change.hasLeft ? ChangeKind::Restore : ChangeKind::Update, change.row, change.old);
      });
  for (const std::uint32_t row : inserted_) {
    loader_->AddRecord(ChangeKind::Insert, row, {});
  }
}

std::unique_ptr<store::Store> XmlReader::Read() {
  ExpectStart("kivdata");
  if (TakeAttribute("version") != "1" || TakeAttribute("kind") != "offline") {
    in_.Refuse("textul este de alt fel sau de alta versiune");
  }
  EndOfAttributes();
  ExpectStart("table");
  try {
    name_ = FromUtf8(TakeAttribute("name"));
    EndOfAttributes();
    Event event = Next();
    for (; event == Event::Start && in_.Name() == "field"; event = Next()) {
      ReadField();
    }
    if (event != Event::Start || in_.Name() != "rows") {
      in_.Refuse("trebuie elementul <rows>");
    }
    EndOfAttributes();
    loader_.emplace(name_, Schema(fields_));
    now_.emplace(fields_.size());
    was_.emplace(fields_.size());
    for (event = Next(); event == Event::Start; event = Next()) {
      if (in_.Name() != "r") {
        in_.Refuse("trebuie elementul <r>");
      }
      ReadRow();
    }
    ExpectEnd();
    ExpectEnd();
    AddRecordsInOrder();
    auto store = loader_->Finish();
    Next();
    return store;
  } catch (const PacketError&) {
    throw;
  } catch (const OsError&) {
    throw;
  } catch (const Error& error) {
    in_.Refuse(error.what());
  }
}

Dataset ReadFrom(const PacketSource& source, const Text& operation, const ReadLimits& limits) {
  return Dataset(XmlReader(source, operation, limits).Read());
}

}  // namespace

Dataset ReadXml(const PacketSource& source, const ReadLimits& limits) {
  return ReadFrom(source, "ReadXml", limits);
}

Dataset LoadXml(const std::filesystem::path& path, const ReadLimits& limits) {
  constexpr TextView kOperation = "LoadXml";
  platform::File file;
  file.Open(path, platform::OpenMode::ReadFile).OrThrow(kOperation, path);
  packet::FileSource source(file, path, kOperation);
  return ReadFrom([&](std::span<std::uint8_t> into) { return source.Read(into); },
                  Text(kOperation) + ": " + platform::ShownPath(path.native()), limits);
}

}  // namespace kiv
