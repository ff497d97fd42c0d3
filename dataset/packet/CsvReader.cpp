#include <algorithm>
#include <functional>
#include <memory>

#include "core/Numbers.h"
#include "dataset/packet/Base64.h"
#include "dataset/packet/CsvColumns.h"
#include "dataset/packet/FileSource.h"
#include "dataset/packet/Names.h"
#include "dataset/packet/Unicode.h"
#include "dataset/store/BlockLoader.h"
#include "kivtools/dataset/Csv.h"
#include "platform/Paths.h"

namespace kiv {
namespace {

using packet::CsvRecords;
using store::Cell;
using store::Quoted;

/// A text that can be gone through twice.
struct TwoPasses {
  PacketSource first;
  std::function<void()> noSecond;  ///< says that the second will not be asked for
  std::function<PacketSource()> second;
};

bool IsKey(const FieldDef& field) noexcept {
  return Has(field.flags, kKey);
}

/// Where rows begin. Mostly each row is one line, so that lines take little memory.
class RowPlaces {
 public:
  void Note(std::uint32_t row, const packet::TextPlace& place) {
    if (runs_.empty() || runs_.back().line + (row - runs_.back().row) != place.line) {
      runs_.push_back({row, place.line});
    }
    offsets_.push_back(place.offset);
  }
  [[nodiscard]] packet::TextPlace PlaceOf(std::uint32_t row) const noexcept {
    const auto after = std::ranges::upper_bound(runs_, row, {}, &Run::row);
    return {.line = after[-1].line + (row - after[-1].row), .offset = offsets_[row]};
  }

 private:
  struct Run {
    std::uint32_t row;
    std::uint64_t line;
  };
  std::vector<Run> runs_;
  std::vector<std::uint64_t> offsets_;
};

/// Turns comma-separated values into a dataset.
class CsvReader {
 public:
  CsvReader(Text operation, const CsvReadOptions& options, const ReadLimits& limits)
      : operation_(std::move(operation)),
        options_(options),
        limits_(limits),
        form_(options.numbers == CsvNumbers::Romanian ? packet::kRomanianNumbers : packet::kPlainNumbers),
        isUtf8_(options.encoding != CsvEncoding::Windows1250) {}

  Dataset Read(const TwoPasses& passes, TextView name);

 private:
  bool LookFirst(const TwoPasses& passes, TextView name, std::optional<Dataset>& read);
  void ReadHeader(CsvRecords& records);
  bool NextRow(CsvRecords& records) const;
  void Look(CsvRecords& records);
  void MakeFields();
  Dataset Load(CsvRecords& records, TextView name);
  std::unique_ptr<store::Store> Finish(store::BlockLoader& loader, const RowPlaces& places) const;
  void Take(const CsvRecords& records, std::size_t column, Cell& cell);
  bool TakeValue(std::size_t column, std::string_view text, Cell& cell);
  bool TakeText(std::size_t column, std::string_view text, Cell& cell);
  [[nodiscard]] std::size_t RefusedColumn(std::span<const Cell> cells) const;
  [[nodiscard]] Text Shown(std::string_view text) const { return isUtf8_ ? packet::ShownPiece(text) : Quoted(text); }

  Text operation_;
  const CsvReadOptions& options_;
  const ReadLimits& limits_;
  packet::NumberForm form_;
  bool isUtf8_;
  std::vector<std::string> header_;
  std::vector<packet::ColumnGuess> guesses_;
  std::vector<FieldDef> fields_;
  std::size_t given_ = 0;  // how many fields are as the caller wants them
  // By column, what a text is turned into: it stays where it is until its row is in.
  std::vector<std::string> bytes_;
  std::vector<std::u16string> wides_;
};

Dataset CsvReader::Read(const TwoPasses& passes, TextView name) {
  std::optional<Dataset> read;
  if (!LookFirst(passes, name, read)) {
    const PacketSource source = passes.second();
    CsvRecords records(source, operation_);
    ReadHeader(records);
    read = Load(records, name);
  }
  return std::move(*read);
}

/// Finds out what nobody has said. Where nothing was left to find out it reads on, and there is no second pass.
bool CsvReader::LookFirst(const TwoPasses& passes, TextView name, std::optional<Dataset>& read) {
  CsvRecords records(passes.first, operation_);
  ReadHeader(records);
  const bool isEncodingKnown = options_.encoding != CsvEncoding::Detect || records.HasMark();
  if (isEncodingKnown) {
    MakeFields();
    if (given_ == fields_.size()) {
      passes.noSecond();
      read = Load(records, name);
      return true;
    }
  }
  Look(records);
  if (!isEncodingKnown) {
    const auto isUtf8 = [](const std::string& text) { return packet::LettersOf(text) != packet::Letters::Malformed; };
    isUtf8_ = std::ranges::all_of(guesses_, &packet::ColumnGuess::IsUtf8) && std::ranges::all_of(header_, isUtf8);
  }
  MakeFields();
  return false;
}

void CsvReader::ReadHeader(CsvRecords& records) {
  if (options_.separator) {
    records.SetSeparator(options_.separator);
  }
  if (!records.Next()) {
    records.Refuse(0, "textul este gol: lipsesc numele coloanelor");
  }
  if (records.Values().size() > std::min<std::size_t>(limits_.maxFields, store::kMostFields)) {
    records.Refuse(0, "textul are mai multe coloane decat este permis");
  }
  header_.clear();
  for (const CsvRecords::Value& value : records.Values()) {
    header_.emplace_back(value.text);
  }
  guesses_.resize(header_.size());
}

/// Goes to the next row; an empty line is one only where there is one column.
bool CsvReader::NextRow(CsvRecords& records) const {
  do {
    if (!records.Next()) {
      return false;
    }
  } while (header_.size() > 1 && records.Values().size() == 1 && records.Values()[0].text.empty());
  if (records.Values().size() != header_.size()) {
    Text why = "randul are ";
    AppendDecimal(why, records.Values().size());
    why += " valori, nu ";
    AppendDecimal(why, header_.size());
    records.Refuse(0, why);
  }
  return true;
}

void CsvReader::Look(CsvRecords& records) {
  while (NextRow(records)) {
    for (std::size_t i = 0; i < guesses_.size(); ++i) {
      guesses_[i].Note(records.Values()[i], form_);
    }
  }
}

/// The fields by the header, by what was seen of them and by what the caller says.
void CsvReader::MakeFields() {
  fields_.clear();
  packet::ColumnNames names;
  for (std::size_t i = 0; i < header_.size(); ++i) {
    Text name = names.Add(isUtf8_ ? packet::ShownUtf8(header_[i]) : header_[i]);
    fields_.emplace_back(std::move(name), guesses_[i].Type(isUtf8_));
  }
  given_ = 0;
  for (const FieldDef& given : options_.fields) {
    const auto column = names.Take(given.name);
    if (!column) {
      packet::RefuseText(operation_, {}, "coloana " + Quoted(given.name) + " lipseste sau apare de doua ori");
    }
    fields_[*column] = given;
    ++given_;
  }
  bytes_.resize(fields_.size());
  wides_.resize(fields_.size());
}

Dataset CsvReader::Load(CsvRecords& records, TextView name) {
  store::BlockLoader loader(name, Schema(fields_));
  std::vector<Cell> cells(fields_.size());
  std::uint64_t bytes = 0;
  RowPlaces places;
  const bool hasKey = std::ranges::any_of(fields_, IsKey);
  for (std::uint32_t row = 0; NextRow(records); ++row) {
    if (hasKey) {
      places.Note(row, records.Place());
    }
    bytes += sizeof(std::uint64_t) * cells.size();
    for (std::size_t i = 0; i < cells.size(); ++i) {
      Take(records, i, cells[i]);
      bytes += cells[i].bytes.size();
    }
    if (row >= limits_.maxRows || bytes > limits_.maxBytes) {
      records.Refuse(0, "textul are mai multe randuri sau ar ocupa mai multa memorie decat este permis");
    }
    try {
      loader.AddRow(cells);
    } catch (const Error& error) {
      records.Refuse(RefusedColumn(cells), error.what());
    }
  }
  return Dataset(Finish(loader, places));
}

/// A key that is there twice shows at the end of the text; its place is the first value of it in the later row.
std::unique_ptr<store::Store> CsvReader::Finish(store::BlockLoader& loader, const RowPlaces& places) const {
  try {
    return loader.Finish();
  } catch (const Error& error) {
    const auto row = loader.RowWithTakenKey();
    if (!row) {
      throw;
    }
    packet::TextPlace place = places.PlaceOf(*row);
    place.column = static_cast<std::uint64_t>(std::ranges::find_if(fields_, IsKey) - fields_.begin()) + 1;
    packet::RefuseText(operation_, place, error.what());
  }
}

/// The column, from 1, of the first value that its field refuses; 0 where each is taken and the row is refused.
std::size_t CsvReader::RefusedColumn(std::span<const Cell> cells) const {
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (cells[i].isNull) {
      if (IsKey(fields_[i]) || Has(fields_[i].flags, kRequired)) {
        return i + 1;
      }
      continue;
    }
    try {
      CheckCell(fields_[i], cells[i], {});
    } catch (const Error&) {
      return i + 1;
    }
  }
  return 0;
}

void CsvReader::Take(const CsvRecords& records, std::size_t column, Cell& cell) {
  const CsvRecords::Value& value = records.Values()[column];
  cell = Cell{};
  if ((value.text.empty() && !value.isQuoted) || TakeValue(column, value.text, cell)) {
    return;
  }
  const FieldDef& field = fields_[column];
  records.Refuse(column + 1, Quoted(field.name) + ": " + Shown(value.text) + " nu este o valoare de tip " +
                                 store::TraitsOf(field.type).name);
}

bool CsvReader::TakeValue(std::size_t column, std::string_view text, Cell& cell) {
  const FieldType type = fields_[column].type;
  if (store::TraitsOf(type).storage == store::Storage::Fixed) {
    return packet::ReadValue(type, text, cell, form_);
  }
  cell.isNull = false;
  return TakeText(column, text, cell);
}

bool CsvReader::TakeText(std::size_t column, std::string_view text, Cell& cell) {
  const FieldType type = fields_[column].type;
  if (type == FieldType::Blob) {
    bytes_[column].clear();
    const bool isWhole = packet::AppendFromBase64(bytes_[column], text);
    cell.bytes = bytes_[column];
    return isWhole;
  }
  const packet::Letters letters = isUtf8_ ? packet::LettersOf(text) : packet::Letters::Windows1250;
  if (type == FieldType::WideText) {
    wides_[column].clear();
    const bool isWhole = AppendUtf16(wides_[column], isUtf8_ ? text : ToUtf8(text));
    cell.bytes = {reinterpret_cast<const char*>(wides_[column].data()), wides_[column].size() * sizeof(char16_t)};
    return isWhole;
  }
  cell.bytes = text;
  if (isUtf8_ && letters == packet::Letters::Windows1250) {
    bytes_[column] = FromUtf8(text);
    cell.bytes = bytes_[column];
  }
  return letters <= packet::Letters::Windows1250;
}

/// A stream is held in memory as long as it may have to be gone through twice.
class HeldStream {
 public:
  explicit HeldStream(const PacketSource& source) : source_(source) {}

  TwoPasses Passes() {
    return {.first = [this](std::span<std::uint8_t> into) { return Give(into); },
            .noSecond = [this] { isHolding_ = false; },
            .second = [this] { return [this](std::span<std::uint8_t> into) { return GiveAgain(into); }; }};
  }

 private:
  std::size_t Give(std::span<std::uint8_t> into) {
    const std::size_t count = source_(into);
    if (isHolding_) {
      held_.insert(held_.end(), into.begin(), into.begin() + static_cast<std::ptrdiff_t>(count));
    }
    return count;
  }
  std::size_t GiveAgain(std::span<std::uint8_t> into) {
    const std::size_t count = std::min(into.size(), held_.size() - given_);
    std::copy_n(held_.begin() + static_cast<std::ptrdiff_t>(given_), count, into.begin());
    given_ += count;
    return count;
  }

  const PacketSource& source_;
  std::vector<std::uint8_t> held_;
  std::size_t given_ = 0;
  bool isHolding_ = true;
};

constexpr TextView kLoad = "LoadCsv";

PacketSource SourceOf(const std::filesystem::path& path) {
  auto file = std::make_shared<platform::File>();
  file->Open(path, platform::OpenMode::ReadFile).OrThrow(kLoad, path);
  auto source = std::make_shared<packet::FileSource>(*file, path, kLoad);
  return [file, source](std::span<std::uint8_t> into) { return source->Read(into); };
}

}  // namespace

Dataset ReadCsv(const PacketSource& source, TextView name, const CsvReadOptions& options, const ReadLimits& limits) {
  HeldStream stream(source);
  return CsvReader("ReadCsv", options, limits).Read(stream.Passes(), name);
}

Dataset LoadCsv(const std::filesystem::path& path, const CsvReadOptions& options, TextView name,
                const ReadLimits& limits) {
  const TwoPasses passes = {.first = SourceOf(path), .noSecond = [] {}, .second = [&] { return SourceOf(path); }};
  const Text ownName = name.empty() ? packet::NameFrom(platform::ShownPath(path.stem().native())) : Text(name);
  return CsvReader(Text(kLoad) + ": " + platform::ShownPath(path.native()), options, limits).Read(passes, ownName);
}

}  // namespace kiv
