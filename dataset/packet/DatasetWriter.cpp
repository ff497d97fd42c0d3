#include "dataset/packet/DatasetWriter.h"

#include <algorithm>

#include "dataset/packet/RowNumbers.h"
#include "dataset/packet/RowWriter.h"

namespace kiv::packet {

using store::Cell;
using store::Column;
using store::Log;
using store::RecordReader;
using store::Storage;
using store::StoredState;
using store::TraitsOf;

namespace {

constexpr std::uint32_t kUnused = 0xFFFFFFFF;

void PutName(ChunkWriter& out, TextView name) {
  out.Put(static_cast<std::uint8_t>(name.size()));
  out.PutBytes(name);
}

}  // namespace

void PutPieces(ChunkWriter& out, PieceOf kind, std::string_view bytes) {
  const auto total = static_cast<std::uint32_t>(bytes.size());
  std::uint32_t done = 0;
  do {
    if (out.IsOpen() && out.IsFull()) {
      out.End();
    }
    if (!out.IsOpen()) {
      out.Begin(kLargeValues);
    }
    const auto size = static_cast<std::uint32_t>(std::min<std::size_t>(kPiece, total - done));
    out.Put(kind);
    out.Put(total);
    out.Put(done);
    out.Put(size);
    out.PutBytes(bytes.substr(done, size));
    done += size;
  } while (done < total);
}

void WriteLongText(ChunkWriter& out, std::string_view bytes) {
  PutPieces(out, PieceOf::LongText, bytes);
  out.End();
}

void PutText(ChunkWriter& out, std::string_view bytes, std::size_t most) {
  if (bytes.size() > most) {
    out.Put(kIsLong);
  } else {
    out.Put(static_cast<std::uint16_t>(bytes.size()));
    out.PutBytes(bytes);
  }
}

void DatasetWriter::Write(std::span<const PacketNote> notes) {
  if (delta_ == nullptr) {
    dropped_ = DroppedRows(contents_);
  }
  NumberLargeValues();
  WriteTable();
  WriteNotes(notes);
  WriteLargeValues();
  for (std::size_t i = 0; i < contents_.columns.size(); ++i) {
    if (!cells_.HasHeap(i)) {
      WriteEntries(static_cast<std::uint16_t>(i));
    }
  }
  WriteRows();
  WriteLog();
  out_.Finish(RowCount());
}

std::uint32_t DatasetWriter::RowCount() const noexcept {
  return delta_ != nullptr ? delta_->Count() : contents_.rowCount - static_cast<std::uint32_t>(dropped_.size());
}

std::uint32_t DatasetWriter::RecordCount() const noexcept {
  return delta_ != nullptr ? delta_->Count() : contents_.log.Count();
}

template <class Visit>
void DatasetWriter::ForEachRow(Visit visit) const {
  if (delta_ != nullptr) {
    for (std::uint32_t ticket = 0; ticket < delta_->Count(); ++ticket) {
      visit(static_cast<std::uint32_t>(delta_->Row(ticket)));
    }
    return;
  }
  auto dropped = dropped_.begin();
  for (std::uint32_t row = 0; row < contents_.rowCount; ++row) {
    if (dropped != dropped_.end() && *dropped == row) {
      ++dropped;
    } else {
      visit(row);
    }
  }
}

void DatasetWriter::NumberLargeValues() {
  if (contents_.large.Count() == 0) {
    return;
  }
  largeNumbers_.assign(contents_.large.Count(), kUnused);
  const auto use = [&](std::size_t field, const Cell& cell) {
    if (!cell.isNull && TraitsOf(contents_.columns[field].type).storage == Storage::Large) {
      largeNumbers_[static_cast<std::size_t>(cell.bits)] = 0;
    }
  };
  for (std::size_t field = 0; field < contents_.columns.size(); ++field) {
    if (TraitsOf(contents_.columns[field].type).storage == Storage::Large) {
      ForEachRow([&](std::uint32_t row) { use(field, cells_.LoadAt(row, field)); });
    }
  }
  ForEachRecord([&](ChangeKind /*kind*/, std::uint32_t /*row*/) {
    for (const OldValue& value : old_) {
      use(value.field, value.cell);
    }
  });
  std::uint32_t next = 0;
  for (std::uint32_t& number : largeNumbers_) {
    number = number == kUnused ? kUnused : next++;
  }
}

void DatasetWriter::WriteTable() {
  out_.Begin(kTable);
  out_.Put(kOnlyTable);
  out_.Put(kNoTable);
  PutName(out_, contents_.name);
  out_.Put(RowCount());
  out_.Put(RecordCount());
  out_.Put(contents_.nextTemporary);
  if (delta_ != nullptr) {
    out_.PutBytes(&delta_->Id(), sizeof(Guid));
  }
  out_.Put(static_cast<std::uint16_t>(contents_.columns.size()));
  for (std::size_t i = 0; i < contents_.columns.size(); ++i) {
    PutField(i);
  }
  out_.End();
}

void DatasetWriter::WriteNotes(std::span<const PacketNote> notes) {
  if (notes.empty()) {
    return;
  }
  out_.Begin(kNotes);
  for (const PacketNote& note : notes) {
    for (const Text* text : {&note.name, &note.value}) {
      out_.Put(static_cast<std::uint32_t>(text->size()));
      out_.PutBytes(*text);
    }
  }
  out_.End();
}

void DatasetWriter::PutField(std::size_t index) {
  const FieldDef& field = contents_.schemaData->fields[index];
  PutName(out_, field.name);
  out_.Put(field.type);
  out_.Put(field.size);
  out_.Put(static_cast<std::uint8_t>(static_cast<unsigned>(field.collation) << kCollationShift |
                                     static_cast<unsigned>(field.flags)));
  out_.Put(static_cast<std::uint8_t>(cells_.HasHeap(index)));
  PutDefault(field);
}

void DatasetWriter::PutDefault(const FieldDef& field) {
  const Cell cell = store::MakeCell(field, field.defaultValue, contents_.owner);
  out_.Put(static_cast<std::uint8_t>(!cell.isNull));
  if (cell.isNull) {
    return;
  }
  if (TraitsOf(field.type).storage == Storage::Fixed) {
    out_.Put(cell.bits);
    out_.Put(cell.more);
  } else {
    out_.Put(static_cast<std::uint32_t>(cell.bytes.size()));
    out_.PutBytes(cell.bytes);
  }
}

void DatasetWriter::WriteLargeValues() {
  for (std::uint32_t number = 0; number < largeNumbers_.size(); ++number) {
    if (largeNumbers_[number] != kUnused) {
      PutPieces(out_, PieceOf::LargeValue, contents_.large.At(number));
    }
  }
  if (out_.IsOpen()) {
    out_.End();
  }
}

void DatasetWriter::WriteEntries(std::uint16_t field) {
  const store::Texts& texts = contents_.columns[field].texts;
  for (std::uint32_t code = 0; code < texts.EntryCount(); ++code) {
    const std::string_view text = texts.Read(code, contents_.large);
    if (out_.IsOpen() && (out_.IsFull() || text.size() > kMostInRows)) {
      out_.End();
    }
    if (text.size() > kMostInRows) {
      WriteLongText(out_, text);
    }
    if (!out_.IsOpen()) {
      out_.Begin(kEntries);
      out_.Put(field);
    }
    PutText(out_, text, kMostInRows);
  }
  if (out_.IsOpen()) {
    out_.End();
  }
}

void DatasetWriter::WriteRows() {
  RowWriter writer(cells_, largeNumbers_, out_);
  ForEachRow([&](std::uint32_t row) { writer.Add(row); });
  writer.Finish();
}

void DatasetWriter::CollectOld(std::uint32_t position) {
  old_.clear();
  for (RecordReader old(contents_.log, position, *contents_.schemaData); old.Next();) {
    old_.push_back({old.Field(), contents_.Resolve(old.Field(), old.Old())});
  }
  std::ranges::sort(old_, {}, &OldValue::field);
}

void DatasetWriter::CollectChanged(std::uint32_t row) {
  old_.clear();
  for (std::size_t field = 0; field < contents_.columns.size(); ++field) {
    if (cells_.IsChanged(row, field)) {
      old_.push_back({static_cast<std::uint16_t>(field), contents_.ReadOriginal(row, field)});
    }
  }
}

template <class Visit>
void DatasetWriter::ForEachRecord(Visit visit) {
  if (delta_ != nullptr) {
    for (std::uint32_t ticket = 0; ticket < delta_->Count(); ++ticket) {
      CollectChanged(static_cast<std::uint32_t>(delta_->Row(ticket)));
      visit(delta_->Kind(ticket), ticket);
    }
    return;
  }
  const Log& log = contents_.log;
  for (std::uint32_t at = log.First(); at != Log::kNone; at = log.Next(at)) {
    CollectOld(at);
    const Log::Header header = log.HeaderAt(at);
    visit(header.kind, NewNumber(dropped_, header.row));
  }
}

void DatasetWriter::WriteLog() {
  ForEachRecord([&](ChangeKind kind, std::uint32_t row) { WriteRecord(kind, row); });
  if (out_.IsOpen()) {
    out_.End();
  }
}

void DatasetWriter::WriteRecord(ChangeKind kind, std::uint32_t row) {
  const auto isLong = [&](const OldValue& value) {
    return cells_.HasHeap(value.field) && value.cell.bytes.size() > kMostInRecord;
  };
  if (out_.IsOpen() && (out_.IsFull() || std::ranges::any_of(old_, isLong))) {
    out_.End();
  }
  for (const OldValue& value : old_) {
    if (isLong(value)) {
      WriteLongText(out_, value.cell.bytes);
    }
  }
  if (!out_.IsOpen()) {
    out_.Begin(kRecords);
  }
  out_.Put(kind);
  out_.Put(row);
  out_.Put(static_cast<std::uint16_t>(old_.size()));
  for (const OldValue& value : old_) {
    PutOldValue(value.field, value.cell);
  }
}

void DatasetWriter::PutOldValue(std::uint16_t field, const Cell& old) {
  if (old.isNull) {
    out_.Put(static_cast<std::uint16_t>(field | kOldIsNull));
    return;
  }
  out_.Put(field);
  const Column& column = contents_.columns[field];
  const store::TypeTraits& traits = TraitsOf(column.type);
  if (cells_.HasHeap(field)) {
    PutText(out_, old.bytes, kMostInRecord);
  } else if (traits.storage == Storage::Large) {
    out_.Put(largeNumbers_[static_cast<std::size_t>(old.bits)]);
  } else {
    // The first bytes of the 64 are the element.
    out_.PutBytes(&old.bits, store::Plane::BytesOf(traits.width, 1));
    if (column.type == FieldType::Guid) {
      out_.Put(old.more);
    }
  }
}

}  // namespace kiv::packet
