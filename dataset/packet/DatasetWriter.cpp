#include "dataset/packet/DatasetWriter.h"

#include <algorithm>

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

bool HasHeap(const Column& column) noexcept {
  return TraitsOf(column.type).storage == Storage::Texts && !column.texts.HasDictionary();
}

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
    const auto size = static_cast<std::uint32_t>(std::min<std::size_t>(kFullChunk, total - done));
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

void DatasetWriter::Write() {
  NumberRows();
  NumberLargeValues();
  WriteTable();
  WriteLargeValues();
  for (std::size_t i = 0; i < contents_.columns.size(); ++i) {
    WriteEntries(static_cast<std::uint16_t>(i));
  }
  WriteRows();
  WriteLog();
  out_.Finish();
}

void DatasetWriter::NumberRows() {
  if (contents_.counts[static_cast<std::size_t>(StoredState::Gone)] == 0) {
    return;
  }
  for (std::uint32_t row = 0; row < contents_.rowCount; ++row) {
    if (contents_.StateOf(row) == StoredState::Gone && contents_.LastRecordOf(row) == Log::kNone) {
      dropped_.push_back(row);
    }
  }
}

std::uint32_t DatasetWriter::NewNumberOf(std::uint32_t row) const noexcept {
  return row - static_cast<std::uint32_t>(std::ranges::lower_bound(dropped_, row) - dropped_.begin());
}

void DatasetWriter::NumberLargeValues() {
  largeNumbers_.assign(contents_.large.Count(), kUnused);
  const auto use = [&](const Cell& cell) {
    if (!cell.isNull) {
      largeNumbers_[static_cast<std::size_t>(cell.bits)] = 0;
    }
  };
  for (const Column& column : contents_.columns) {
    auto dropped = dropped_.begin();
    const bool isLarge = TraitsOf(column.type).storage == Storage::Large;
    for (std::uint32_t row = 0; isLarge && row < contents_.rowCount; ++row) {
      if (dropped != dropped_.end() && *dropped == row) {
        ++dropped;
      } else {
        use(column.Load(row));
      }
    }
  }
  const Log& log = contents_.log;
  for (std::uint32_t at = log.First(); !largeNumbers_.empty() && at != Log::kNone; at = log.Next(at)) {
    for (RecordReader old(log, at, *contents_.schemaData); old.Next();) {
      if (TraitsOf(contents_.columns[old.Field()].type).storage == Storage::Large) {
        use(old.Old());
      }
    }
  }
  std::uint32_t next = 0;
  for (std::uint32_t& number : largeNumbers_) {
    number = number == kUnused ? kUnused : next++;
  }
}

void DatasetWriter::WriteTable() {
  out_.Begin(kTable);
  PutName(out_, contents_.name);
  out_.Put(contents_.rowCount - static_cast<std::uint32_t>(dropped_.size()));
  out_.Put(contents_.log.Count());
  out_.Put(static_cast<std::uint16_t>(contents_.columns.size()));
  for (std::size_t i = 0; i < contents_.columns.size(); ++i) {
    PutField(i);
  }
  out_.End();
}

void DatasetWriter::PutField(std::size_t index) {
  const FieldDef& field = contents_.schemaData->fields[index];
  PutName(out_, field.name);
  out_.Put(field.type);
  out_.Put(field.size);
  out_.Put(field.flags);
  out_.Put(static_cast<std::uint8_t>(HasHeap(contents_.columns[index])));
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
  RowWriter writer(contents_, largeNumbers_, out_);
  auto dropped = dropped_.begin();
  for (std::uint32_t row = 0; row < contents_.rowCount; ++row) {
    if (dropped != dropped_.end() && *dropped == row) {
      ++dropped;
    } else {
      writer.Add(row);
    }
  }
  writer.Finish();
}

void DatasetWriter::WriteLog() {
  const Log& log = contents_.log;
  for (std::uint32_t at = log.First(); at != Log::kNone; at = log.Next(at)) {
    WriteRecord(at);
  }
  if (out_.IsOpen()) {
    out_.End();
  }
}

void DatasetWriter::WriteRecord(std::uint32_t position) {
  struct OldValue {
    std::uint16_t field;
    Cell cell;
  };
  std::vector<OldValue> values;
  for (RecordReader old(contents_.log, position, *contents_.schemaData); old.Next();) {
    values.push_back({old.Field(), old.Old()});
    if (HasHeap(contents_.columns[old.Field()])) {
      values.back().cell = contents_.Resolve(old.Field(), old.Old());
    }
  }
  std::ranges::sort(values, {}, &OldValue::field);
  const auto isLong = [](const OldValue& value) { return value.cell.bytes.size() > kMostInRecord; };
  if (out_.IsOpen() && (out_.IsFull() || std::ranges::any_of(values, isLong))) {
    out_.End();
  }
  for (const OldValue& value : values) {
    if (isLong(value)) {
      WriteLongText(out_, value.cell.bytes);
    }
  }
  if (!out_.IsOpen()) {
    out_.Begin(kRecords);
  }
  const Log::Header header = contents_.log.HeaderAt(position);
  out_.Put(header.kind);
  out_.Put(NewNumberOf(header.row));
  out_.Put(static_cast<std::uint16_t>(values.size()));
  for (const OldValue& value : values) {
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
  if (HasHeap(column)) {
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
