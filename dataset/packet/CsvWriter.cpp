#include "core/Numbers.h"
#include "dataset/packet/Base64.h"
#include "dataset/packet/PacketFile.h"
#include "dataset/packet/TextOut.h"
#include "dataset/packet/Unicode.h"
#include "dataset/packet/ValueText.h"
#include "dataset/store/Contents.h"
#include "kivtools/dataset/Csv.h"

namespace kiv {
namespace {

using store::Cell;
using store::Quoted;

/// Writes the rows of contents that nobody edits meanwhile.
class CsvWriter {
 public:
  CsvWriter(const DatasetView& dataset, const PacketSink& sink, const CsvWriteOptions& options)
      : dataset_(dataset), contents_(dataset.GetContents()), out_(sink), options_(options) {}

  void Write() {
    const bool isUtf8 = options_.encoding != CsvEncoding::Windows1250;
    if (options_.mark && isUtf8) {
      out_.Put("\xEF\xBB\xBF");
    }
    const auto& fields = contents_.schemaData->fields;
    for (std::size_t i = 0; i < fields.size(); ++i) {
      Separate(i);
      out_.Put(isUtf8 ? ToUtf8(fields[i].name, DiacriticForm::CommaBelow) : fields[i].name);
    }
    for (const RowId row : dataset_.Rows()) {
      out_.Put("\r\n");
      for (std::size_t i = 0; i < fields.size(); ++i) {
        Separate(i);
        PutValue(static_cast<std::uint32_t>(row), i);
      }
    }
    out_.Put("\r\n");
    out_.Flush();
  }

 private:
  void Separate(std::size_t field) {
    if (field > 0) {
      out_.Put(options_.separator);
    }
  }

  void PutValue(std::uint32_t row, std::size_t field) {
    const Cell cell = contents_.Read(row, field);
    const FieldType type = contents_.columns[field].type;
    if (cell.isNull) {
      return;
    }
    if (store::TraitsOf(type).storage == store::Storage::Fixed) {
      const char point = options_.numbers == CsvNumbers::Romanian ? ',' : '.';
      std::array<char, packet::kMostValueText> text{};
      PutText({text.data(), packet::WriteValue(text.data(), type, cell, point)});
      return;
    }
    text_.clear();
    if (type == FieldType::Blob) {
      packet::AppendBase64(text_, cell.bytes);
    } else if (type == FieldType::WideText) {
      AppendUtf8(text_, std::get<std::u16string_view>(store::ViewOf(type, cell).Get()));
      if (options_.encoding == CsvEncoding::Windows1250) {
        text_ = ToWindows1250(row, field);
      }
    } else if (options_.encoding == CsvEncoding::Windows1250) {
      text_ = cell.bytes;
    } else {
      text_ = ToUtf8(cell.bytes, DiacriticForm::CommaBelow);
    }
    Guard();
    PutText(text_);
  }

  [[nodiscard]] Text ToWindows1250(std::uint32_t row, std::size_t field) const {
    try {
      return FromUtf8(text_);
    } catch (const ConversionError& error) {
      Text message = contents_.owner + ": campul " + Quoted(contents_.schemaData->fields[field].name) + ", randul ";
      AppendDecimal(message, row);
      throw Error(message + ": " + error.what());
    }
  }

  void Guard() {
    if (options_.forSpreadsheet && !text_.empty() &&
        (TextView("=+-@").find(text_[0]) != TextView::npos || ascii::IsControl(text_[0]))) {
      text_.insert(0, 1, '\'');
    }
  }

  void PutText(std::string_view text) {
    const auto isSpecial = [&](char character) {
      return character == options_.separator || character == '"' || character == '\n' || character == '\r';
    };
    if (!text.empty() && std::ranges::none_of(text, isSpecial)) {
      out_.Put(text);
      return;
    }
    out_.Put('"');
    for (std::size_t at = 0; at < text.size();) {
      const std::size_t end = std::min(text.find('"', at), text.size() - 1) + 1;
      out_.Put(text.substr(at, end - at));
      if (text[end - 1] == '"') {
        out_.Put('"');
      }
      at = end;
    }
    out_.Put('"');
  }

  const DatasetView& dataset_;
  const store::Contents& contents_;
  packet::TextOut out_;
  const CsvWriteOptions& options_;
  std::string text_;
};

void CheckSeparator(TextView operation, char separator) {
  if (separator == '"' || separator == '\r' || separator == '\n' || ascii::IsDigit(separator) || separator == '\0' ||
      static_cast<unsigned char>(separator) >= 0x80) {
    throw Error(Text(operation) + ": separatorul " + Quoted({&separator, 1}) + " nu este permis");
  }
}

}  // namespace

void WriteCsv(const DatasetView& dataset, const PacketSink& sink, const CsvWriteOptions& options) {
  CheckSeparator("WriteCsv", options.separator);
  CsvWriter(dataset, sink, options).Write();
}

void SaveCsv(const DatasetView& dataset, const std::filesystem::path& path, const CsvWriteOptions& options,
             const SaveOptions& save) {
  CheckSeparator("SaveCsv", options.separator);
  packet::SaveText(path, save, "SaveCsv", [&](const PacketSink& sink) { CsvWriter(dataset, sink, options).Write(); });
}

}  // namespace kiv
