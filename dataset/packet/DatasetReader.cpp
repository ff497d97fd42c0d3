#include "dataset/packet/DatasetReader.h"

#include <algorithm>

#include "core/Numbers.h"

namespace kiv::packet {

using store::BlockLoader;
using store::Cell;
using store::Plane;
using store::Storage;
using store::TraitsOf;

namespace {

/// The types that there are.
constexpr auto kLastType = FieldType::AutoInc;
/// What a large value or a record costs beside its bytes.
constexpr std::uint64_t kOverhead = 32;

}  // namespace

std::unique_ptr<store::Store> DatasetReader::Read(PacketKind kind) {
  if (in_.Kind() != kind) {
    in_.Refuse(kind == PacketKind::Delta ? "pachetul este de alt fel: nu tine o diferenta"
                                         : "pachetul este de alt fel: nu tine un set de date intreg");
  }
  if (!in_.Next() || in_.Type() != kTable) {
    in_.Refuse("pachetul nu incepe cu un tabel");
  }
  try {
    ReadTable();
    while (in_.Next() && in_.Type() != kEnd) {
      ReadChunk();
    }
    return Finish();
  } catch (const PacketError&) {
    throw;
  } catch (const OsError&) {
    throw;
  } catch (const Error& error) {
    // What the store says to the values of a packet.
    in_.Refuse(error.what());
  }
}

void DatasetReader::ReadChunk() {
  if (in_.Type() == kTable) {
    in_.Refuse("pachetul are mai multe tabele");
  }
  if (piecesTotal_ && in_.Type() != kLargeValues) {
    in_.Refuse("o valoare lunga nu este intreaga");
  }
  if (in_.Type() == kLargeValues) {
    ReadPieces();
    return;
  }
  if (in_.Type() == kNotes) {
    ReadNotes();
  } else if (in_.Type() == kEntries) {
    ReadEntries();
  } else if (in_.Type() == kRows) {
    Enter(Stage::Rows);
    rows_->ReadChunk();
  } else {
    Enter(Stage::Records);
    ReadRecords();
  }
  if (!longTexts_.empty()) {
    in_.Refuse("un text lung este in plus");
  }
}

void DatasetReader::Enter(Stage stage) {
  if (stage < stage_) {
    in_.Refuse("bucatile nu sunt in ordine");
  }
  if (stage_ < Stage::Records && stage == Stage::Records) {
    rows_->Finish();
  }
  stage_ = stage;
}

void DatasetReader::ReadNotes() {
  if (!notes_.empty()) {
    in_.Refuse("pachetul are notele de doua ori");
  }
  const auto takeText = [&] {
    const std::string_view text = in_.TakeText(in_.Take<std::uint32_t>());
    budget_.Spend(in_, text.size() + kOverhead);
    return Text(text);
  };
  while (!in_.AtEnd()) {
    Text name = takeText();
    notes_.push_back({std::move(name), takeText()});
  }
}

void DatasetReader::ReadTable() {
  if (in_.Take<std::uint16_t>() != kOnlyTable || in_.Take<std::uint16_t>() != kNoTable) {
    in_.Refuse("pachetul are mai multe tabele");
  }
  const Text name(in_.TakeText(in_.Take<std::uint8_t>()));
  rowCount_ = in_.Take<std::uint32_t>();
  recordCount_ = in_.Take<std::uint32_t>();
  nextTemporary_ = in_.Take<std::int64_t>();
  const bool isDelta = in_.Kind() == PacketKind::Delta;
  if (isDelta) {
    std::memcpy(&deltaId_, in_.Take(sizeof deltaId_).data(), sizeof deltaId_);
  }
  const auto fieldCount = in_.Take<std::uint16_t>();
  if (rowCount_ > budget_.Limits().maxRows || fieldCount > budget_.Limits().maxFields) {
    in_.Refuse("pachetul are mai multe randuri sau campuri decat este permis");
  }
  for (std::uint32_t i = 0; i < fieldCount; ++i) {
    bool hasHeap = false;
    fields_.push_back(ReadField(hasHeap));
    hasHeap_.push_back(hasHeap);
  }
  if (!in_.AtEnd()) {
    in_.Refuse("definitiile campurilor au octeti in plus");
  }
  loader_.emplace(name, Schema(fields_), isDelta ? BlockLoader::Purpose::Delta : BlockLoader::Purpose::Dataset);
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    if (hasHeap_[i]) {
      loader_->UseHeap(i);
    }
  }
  rows_.emplace(in_, *loader_, fields_, hasHeap_, longTexts_, budget_, rowCount_);
}

FieldDef DatasetReader::ReadField(bool& hasHeap) {
  Text name(in_.TakeText(in_.Take<std::uint8_t>()));
  const auto type = in_.Take<FieldType>();
  const auto size = in_.Take<std::int32_t>();
  const unsigned flags = in_.Take<std::uint8_t>();
  const auto heap = in_.Take<std::uint8_t>();
  if (type > kLastType || heap > (TraitsOf(type).storage == Storage::Texts ? 1 : 0)) {
    in_.Refuse("un camp are un tip care nu exista");
  }
  hasHeap = heap != 0;
  FieldDef field(std::move(name), type, size, static_cast<FieldFlags>(flags & ((1U << kCollationShift) - 1)));
  field.collation = static_cast<Collation>(flags >> kCollationShift);
  field.defaultValue = ReadDefault(field);
  return field;
}

Value DatasetReader::ReadDefault(const FieldDef& field) {
  const auto isThere = in_.Take<std::uint8_t>();
  if (isThere > 1) {
    in_.Refuse("o valoare implicita nu este scrisa cum trebuie");
  }
  if (isThere == 0) {
    return {};
  }
  Cell cell{.isNull = false};
  std::u16string wide;
  if (TraitsOf(field.type).storage == Storage::Fixed) {
    cell.bits = in_.Take<std::uint64_t>();
    cell.more = in_.Take<std::uint64_t>();
  } else {
    cell.bytes = in_.TakeText(in_.Take<std::uint32_t>());
    if (field.type == FieldType::WideText) {
      if (cell.bytes.size() % 2 != 0) {
        in_.Refuse("un text UTF-16 are un numar impar de octeti");
      }
      wide.resize(cell.bytes.size() / 2);
      std::ranges::copy(cell.bytes, reinterpret_cast<char*>(wide.data()));
      cell.bytes = {reinterpret_cast<const char*>(wide.data()), cell.bytes.size()};
    }
  }
  store::CheckCell(field, cell, "Schema");
  return store::ValueOf(field.type, cell);
}

void DatasetReader::ReadPieces() {
  while (!in_.AtEnd()) {
    const auto of = in_.Take<PieceOf>();
    const auto total = in_.Take<std::uint32_t>();
    const auto offset = in_.Take<std::uint32_t>();
    const auto size = in_.Take<std::uint32_t>();
    const bool isFirst = !piecesTotal_.has_value();
    if (of > PieceOf::LongText || total > 0x7FFFFFFF || offset != pieces_.size() || size > total - offset ||
        (size == 0 && total > 0) || (!isFirst && (of != pieceOf_ || total != *piecesTotal_))) {
      in_.Refuse("o valoare lunga nu este scrisa cum trebuie");
    }
    pieceOf_ = of;
    piecesTotal_ = total;
    budget_.Spend(in_, size + (isFirst ? kOverhead : 0));
    pieces_ += in_.TakeText(size);
    if (pieces_.size() < total) {
      continue;
    }
    if (of == PieceOf::LongText) {
      longTexts_.push_back(std::move(pieces_));
    } else if (stage_ == Stage::Values) {
      loader_->AddLarge(pieces_);
    } else {
      in_.Refuse("bucatile nu sunt in ordine");
    }
    pieces_.clear();
    piecesTotal_.reset();
  }
}

void DatasetReader::ReadEntries() {
  const auto field = in_.Take<std::uint16_t>();
  if (stage_ != Stage::Values || field >= fields_.size() || TraitsOf(fields_[field].type).storage != Storage::Texts ||
      hasHeap_[field]) {
    in_.Refuse("un dictionar nu este al unui camp care il are");
  }
  TextTaker texts(in_, longTexts_);
  while (!in_.AtEnd()) {
    const std::string_view text = texts.Take(fields_[field].type);
    budget_.Spend(in_, text.size() + kOverhead);
    loader_->AddEntry(field, text);
  }
}

void DatasetReader::ReadRecords() {
  std::vector<BlockLoader::OldValue> values;
  while (!in_.AtEnd()) {
    const auto kind = in_.Take<ChangeKind>();
    const auto row = in_.Take<std::uint32_t>();
    const auto count = in_.Take<std::uint16_t>();
    if (recordsRead_++ == recordCount_) {
      in_.Refuse("jurnalul are mai multe inregistrari decat trebuie");
    }
    values.clear();
    oldTexts_.clear();
    for (std::uint32_t i = 0; i < count; ++i) {
      values.push_back(ReadOldValue());
    }
    budget_.Spend(in_, kOverhead + 16 * std::uint64_t{count});
    loader_->AddRecord(kind, row, values);
  }
}

BlockLoader::OldValue DatasetReader::ReadOldValue() {
  const auto number = in_.Take<std::uint16_t>();
  const auto field = static_cast<std::uint16_t>(number & (kOldIsNull - 1U));
  if (field >= fields_.size()) {
    in_.Refuse("jurnalul are un camp care nu exista");
  }
  if ((number & kOldIsNull) != 0) {
    return {field, {}};
  }
  const FieldType type = fields_[field].type;
  if (hasHeap_[field]) {
    TextTaker texts(in_, longTexts_);
    oldTexts_.emplace_back(texts.Take(type));
    budget_.Spend(in_, oldTexts_.back().size());
    return {field, {.bytes = oldTexts_.back(), .isNull = false}};
  }
  Cell cell = store::LoadElement(type, in_.Take(Plane::BytesOf(TraitsOf(type).width, 1)).data(), 0);
  if (type == FieldType::Guid) {
    cell.more = in_.Take<std::uint64_t>();
  }
  return {field, cell};
}

std::unique_ptr<store::Store> DatasetReader::Finish() {
  if (piecesTotal_ || !longTexts_.empty() || recordsRead_ != recordCount_) {
    in_.Refuse("lipsesc valori sau inregistrari ale jurnalului");
  }
  if (stage_ != Stage::Records) {
    rows_->Finish();
  }
  if (in_.Rows() != rowCount_) {
    in_.Refuse("sfarsitul nu se potriveste cu randurile");
  }
  loader_->SetNextTemporary(nextTemporary_);
  auto store = loader_->Finish();
  static_cast<void>(in_.Next());  // nothing may follow
  return store;
}

}  // namespace kiv::packet
