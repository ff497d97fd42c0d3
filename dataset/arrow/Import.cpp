#include <algorithm>
#include <optional>

#include "core/Numbers.h"
#include "dataset/arrow/ColumnView.h"
#include "dataset/arrow/Owned.h"
#include "dataset/packet/CsvColumns.h"
#include "dataset/packet/Names.h"
#include "dataset/packet/Unicode.h"
#include "dataset/store/BlockLoader.h"
#include "kivtools/dataset/Arrow.h"

namespace kiv {
namespace arrow {
namespace {

using packet::Letters;
using store::Cell;
using store::Quoted;

/// A column of all batches.
struct Column {
  Text shown;  ///< `coloana "suma"`, for messages
  ColumnFormat format;
  std::optional<ColumnFormat> entries;  ///< of the dictionary, where there is one
  Letters letters = Letters::Ascii;     ///< of all texts so far
  bool isGiven = false;                 ///< the caller has said what it is

  /// What the values are.
  [[nodiscard]] const ColumnFormat& Values() const noexcept { return entries ? *entries : format; }
};

/// A column of one batch.
struct Part {
  ColumnView column;
  ColumnView entries;
};

/// A batch that has rows.
struct Batch {
  OwnedArray array;
  std::int32_t number;
  std::int64_t rows;
  std::int64_t end;  ///< the rows of all batches up to its end
};

/// Takes over a stream and makes a dataset of it. Its batches are held until their types are known.
class Importer {
 public:
  Importer(ArrowArrayStream& stream, const ArrowImportOptions& options, const ReadLimits& limits)
      : options_(options), limits_(limits), bytesLeft_(limits.maxBytes), stream_(stream) {}

  Dataset Read(TextView name);

 private:
  [[noreturn]] void Refuse(TextView why) const;
  [[noreturn]] void RefuseColumn(const Column& column, TextView why) const { Refuse(column.shown + ": " + Text(why)); }
  void RequireSuccess(int code);
  void ReadSchema();
  Column ReadColumn(const ArrowSchema* schema, packet::ColumnNames& names);
  [[nodiscard]] ColumnFormat ReadFormat(const Column& column, const ArrowSchema& schema) const;
  void TakeBatches();
  void CheckBatch(const ArrowArray& batch);
  void MakeParts(const ArrowArray& batch);
  void CheckTexts(std::size_t column);
  void MakeFields();
  void LoadBatch(store::BlockLoader& loader, const ArrowArray& batch);
  void Take(std::size_t column, Cell& cell);
  void TakeText(std::size_t column, std::string_view text, Cell& cell);
  [[nodiscard]] bool FindText(std::size_t column, std::string_view& text) const;
  void Spend(std::uint64_t bytes);
  std::unique_ptr<store::Store> Finish(store::BlockLoader& loader);

  const ArrowImportOptions& options_;
  const ReadLimits& limits_;
  std::uint64_t bytesLeft_;
  std::int64_t rows_ = 0;
  // Where it is, for messages.
  std::int32_t batch_ = -1;
  std::int64_t row_ = 0;

  // Given back in the order in which they were not got.
  OwnedStream stream_;
  OwnedSchema schema_;
  std::vector<Batch> batches_;

  std::vector<Column> columns_;
  std::vector<FieldDef> fields_;
  std::vector<Part> parts_;  // of the present batch
  // By column, what a text is turned into: it stays where it is until its row is in.
  std::vector<std::string> texts_;
  std::vector<std::u16string> wides_;
};

void Importer::Refuse(TextView why) const {
  Text message = "ImportArrow: ";
  if (batch_ >= 0) {
    message += "lotul ";
    AppendDecimal(message, batch_);
    message += ", randul ";
    AppendDecimal(message, row_);
    message += ": ";
  }
  throw PacketError(batch_, static_cast<std::uint64_t>(row_), message.append(why));
}

void Importer::Spend(std::uint64_t bytes) {
  if (bytes > bytesLeft_) {
    Refuse("datele ar ocupa mai multa memorie decat este permis");
  }
  bytesLeft_ -= bytes;
}

void Importer::RequireSuccess(int code) {
  if (code != 0) {
    Text why = "sursa a raspuns cu eroarea ";
    AppendDecimal(why, code);
    const char* const told = stream_->get_last_error == nullptr ? nullptr : stream_->get_last_error(stream_.Get());
    if (told != nullptr) {
      why += ": " + packet::ShownUtf8(told);
    }
    Refuse(why);
  }
}

ColumnFormat Importer::ReadFormat(const Column& column, const ArrowSchema& schema) const {
  const std::string_view format = schema.format == nullptr ? std::string_view() : schema.format;
  const auto known = ParseFormat(format);
  if (!known || schema.n_children != 0) {
    RefuseColumn(column, "formatul " + packet::ShownPiece(format) + " nu poate fi preluat");
  }
  return *known;
}

Column Importer::ReadColumn(const ArrowSchema* schema, packet::ColumnNames& names) {
  Column column;
  if (schema == nullptr) {
    Refuse("o coloana lipseste din schema");
  }
  const std::string_view name = schema->name == nullptr ? std::string_view() : schema->name;
  column.shown = "coloana " + packet::ShownPiece(name);
  column.format = ReadFormat(column, *schema);
  if (schema->dictionary != nullptr) {
    column.entries = ReadFormat(column, *schema->dictionary);
    if (column.format.elements != Elements::Integer || column.entries->elements != Elements::Text ||
        schema->dictionary->dictionary != nullptr) {
      RefuseColumn(column, "dictionarul de " + packet::ShownPiece(schema->dictionary->format) + " nu poate fi preluat");
    }
  }
  fields_.emplace_back(names.Add(packet::ShownUtf8(name)), column.Values().type);
  return column;
}

void Importer::ReadSchema() {
  if (stream_->release == nullptr || stream_->get_schema == nullptr || stream_->get_next == nullptr) {
    Refuse("fluxul a fost deja eliberat sau nu are functii");
  }
  RequireSuccess(stream_->get_schema(stream_.Get(), schema_.Get()));
  if (schema_->release == nullptr || schema_->format == nullptr || std::string_view(schema_->format) != "+s" ||
      schema_->dictionary != nullptr) {
    Refuse("schema nu este a unor randuri");
  }
  const std::int64_t count = schema_->n_children;
  if (count < 1 || count > std::min<std::int64_t>(limits_.maxFields, store::kMostFields) ||
      schema_->children == nullptr) {
    Refuse("schema are un numar nepermis de coloane");
  }
  packet::ColumnNames names;
  for (std::int64_t i = 0; i < count; ++i) {
    columns_.push_back(ReadColumn(schema_->children[i], names));
  }
  for (const FieldDef& given : options_.fields) {
    const auto column = names.Take(given.name);
    if (!column) {
      Refuse("coloana " + Quoted(given.name) + " lipseste sau apare de doua ori");
    }
    if (!columns_[*column].Values().Fits(given.type, options_.amounts == ArrowAmounts::TenThousandths)) {
      RefuseColumn(columns_[*column], Text("formatul nu este al unui camp de tip ") + store::TraitsOf(given.type).name);
    }
    fields_[*column] = given;
    columns_[*column].isGiven = true;
  }
}

void Importer::MakeParts(const ArrowArray& batch) {
  parts_.resize(columns_.size());
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    const Column& column = columns_[i];
    const ArrowArray* const array = batch.children[i];
    const char* why = "lipseste din lot";
    const bool isMade = array != nullptr && array->release != nullptr &&
                        ColumnView::Make(*array, column.format, batch.offset, batch.length, parts_[i].column, why);
    if (!isMade) {
      RefuseColumn(column, why);
    }
    if ((array->dictionary != nullptr) != column.entries.has_value()) {
      RefuseColumn(column, "dictionarul lotului nu este cel al schemei");
    }
    if (column.entries &&
        !ColumnView::Make(*array->dictionary, *column.entries, 0, array->dictionary->length, parts_[i].entries, why)) {
      RefuseColumn(column, Text("dictionarul ") + why);
    }
  }
}

/// The text of the present row; false for a null.
bool Importer::FindText(std::size_t column, std::string_view& text) const {
  const Part& part = parts_[column];
  if (part.column.IsNull(row_)) {
    return false;
  }
  bool isText = true;
  if (!columns_[column].entries) {
    isText = part.column.ReadText(row_, text);
  } else {
    std::int64_t entry = -1;
    if (!part.column.ReadInteger(row_, entry) || entry < 0 || entry >= part.entries.Rows()) {
      RefuseColumn(columns_[column], "trimite in afara dictionarului");
    }
    if (part.entries.IsNull(entry)) {
      return false;
    }
    isText = part.entries.ReadText(entry, text);
  }
  if (!isText) {
    RefuseColumn(columns_[column], "textul incepe sau se termina unde nu poate");
  }
  return true;
}

/// Of all rows: their places, their sizes against the limits, and which letters they have.
void Importer::CheckTexts(std::size_t column) {
  Column& checked = columns_[column];
  std::string_view text;
  for (row_ = 0; row_ < parts_[column].column.Rows(); ++row_) {
    if (!FindText(column, text)) {
      continue;
    }
    Spend(text.size());
    if (checked.Values().elements == Elements::Text) {
      checked.letters = std::max(checked.letters, packet::LettersOf(text));
    }
    if (checked.letters == Letters::Malformed) {
      RefuseColumn(checked, "textul nu este UTF-8");
    }
  }
  row_ = 0;
}

void Importer::CheckBatch(const ArrowArray& batch) {
  const char* why = nullptr;
  if (!IsArray(batch, 1, why)) {
    Refuse(Text("randurile: ") + why);
  }
  if (batch.n_children != static_cast<std::int64_t>(columns_.size()) || batch.children == nullptr ||
      batch.dictionary != nullptr) {
    Refuse("lotul nu are coloanele schemei");
  }
  if (batch.length > limits_.maxRows - rows_) {
    Refuse("sunt mai multe randuri decat este permis");
  }
  const auto* const valid = static_cast<const std::uint8_t*>(batch.buffers[0]);
  if (batch.null_count > 0 || (valid != nullptr && CountNulls(valid, batch.offset, batch.length) != 0)) {
    Refuse("un rand intreg este nul");
  }
  Spend(static_cast<std::uint64_t>(batch.length) * columns_.size() * sizeof(std::uint64_t));
  MakeParts(batch);
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (columns_[i].Values().IsOfTexts()) {
      CheckTexts(i);
    }
  }
}

void Importer::TakeBatches() {
  for (batch_ = 0;; ++batch_) {
    OwnedArray batch;
    RequireSuccess(stream_->get_next(stream_.Get(), batch.Get()));
    if (batch->release == nullptr) {
      break;
    }
    CheckBatch(*batch);
    if (const std::int64_t rows = batch->length; rows > 0) {
      rows_ += rows;
      batches_.push_back({std::move(batch), batch_, rows, rows_});
    }
  }
}

/// What nobody has said of texts: all of them are known now.
void Importer::MakeFields() {
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (columns_[i].letters == Letters::Others && !columns_[i].isGiven) {
      fields_[i].type = FieldType::WideText;
    }
  }
  texts_.resize(fields_.size());
  wides_.resize(fields_.size());
}

void Importer::TakeText(std::size_t column, std::string_view text, Cell& cell) {
  cell = {.bytes = text, .isNull = false};
  if (fields_[column].type == FieldType::WideText) {
    std::u16string& wide = wides_[column];
    wide.clear();
    AppendUtf16(wide, text);
    cell.bytes = {reinterpret_cast<const char*>(wide.data()), wide.size() * sizeof(char16_t)};
  } else if (fields_[column].type != FieldType::Blob && columns_[column].letters != Letters::Ascii) {
    try {
      texts_[column] = FromUtf8(text);
    } catch (const ConversionError& error) {
      RefuseColumn(columns_[column], error.what());
    }
    cell.bytes = texts_[column];
  }
}

/// The value of the present row.
void Importer::Take(std::size_t column, Cell& cell) {
  cell = {};
  if (columns_[column].Values().IsOfTexts()) {
    std::string_view text;
    if (FindText(column, text)) {
      TakeText(column, text, cell);
    }
  } else if (const ColumnView& view = parts_[column].column;
             !view.IsNull(row_) && !view.Read(row_, fields_[column].type, cell)) {
    RefuseColumn(columns_[column],
                 Text("valoarea nu incape intocmai intr-un camp de tip ") + store::TraitsOf(fields_[column].type).name);
  }
}

void Importer::LoadBatch(store::BlockLoader& loader, const ArrowArray& batch) {
  MakeParts(batch);
  std::vector<Cell> cells(columns_.size());
  for (row_ = 0; row_ < batch.length; ++row_) {
    try {
      for (std::size_t i = 0; i < cells.size(); ++i) {
        Take(i, cells[i]);
      }
      loader.AddRow(cells);
    } catch (const PacketError&) {
      throw;
    } catch (const Error& error) {
      Refuse(error.what());
    }
  }
  row_ = 0;
}

std::unique_ptr<store::Store> Importer::Finish(store::BlockLoader& loader) {
  batch_ = -1;
  try {
    return loader.Finish();
  } catch (const Error& error) {
    if (const auto row = loader.RowWithTakenKey()) {
      const auto holder = std::ranges::find_if(batches_, [&](const Batch& batch) { return *row < batch.end; });
      batch_ = holder->number;
      row_ = static_cast<std::int64_t>(*row) - (holder->end - holder->rows);
    }
    Refuse(error.what());
  }
}

Dataset Importer::Read(TextView name) {
  ReadSchema();
  TakeBatches();
  MakeFields();
  store::BlockLoader loader(name, Schema(fields_));
  for (Batch& batch : batches_) {
    batch_ = batch.number;
    LoadBatch(loader, *batch.array);
    batch.array = {};
  }
  return Dataset(Finish(loader));
}

}  // namespace
}  // namespace arrow

Dataset ImportArrow(ArrowArrayStream& stream, TextView name, const ArrowImportOptions& options,
                    const ReadLimits& limits) {
  return arrow::Importer(stream, options, limits).Read(name);
}

}  // namespace kiv
