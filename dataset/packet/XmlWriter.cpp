#include <algorithm>

#include "core/Numbers.h"
#include "dataset/packet/Base64.h"
#include "dataset/packet/PacketFile.h"
#include "dataset/packet/TextOut.h"
#include "dataset/packet/Unicode.h"
#include "dataset/packet/ValueText.h"
#include "dataset/packet/XmlNames.h"
#include "dataset/store/Contents.h"
#include "kivtools/dataset/Xml.h"

namespace kiv {
namespace {

using store::Cell;
using store::Storage;
using store::StoredState;
using store::TraitsOf;

/// What stands for itself in an attribute, in Windows-1250 and in UTF-8.
constexpr auto kIsPlain = [] {
  std::array<bool, 256> plain{};
  for (std::size_t i = 0x20; i < 0x80; ++i) {
    plain[i] = i != '&' && i != '<' && i != '>' && i != '"';
  }
  return plain;
}();

bool IsPlain(std::string_view text) noexcept {
  return std::ranges::all_of(text, [](char character) { return kIsPlain[static_cast<unsigned char>(character)]; });
}

/// Writes contents that nobody edits meanwhile.
class XmlWriter {
 public:
  XmlWriter(const store::Contents& contents, const PacketSink& sink) : contents_(contents), out_(sink) {
    const auto& fields = contents_.schemaData->fields;
    for (std::size_t i = 0; i < fields.size(); ++i) {
      attributes_.push_back(" " + packet::XmlAttributeOf(i, fields[i].name) + "=\"");
    }
  }

  void Write() {
    out_.Put("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<kivdata version=\"1\" kind=\"offline\">\n <table name=\"");
    PutEscaped(ToUtf8(contents_.name, DiacriticForm::CommaBelow));
    out_.Put("\">\n");
    for (std::size_t i = 0; i < attributes_.size(); ++i) {
      WriteField(i);
    }
    out_.Put("  <rows>\n");
    for (std::uint32_t row = 0; row < contents_.rowCount; ++row) {
      if (contents_.StateOf(row) != StoredState::Gone) {
        WriteRow(row);
      }
    }
    out_.Put("  </rows>\n </table>\n</kivdata>\n");
    out_.Flush();
  }

 private:
  void WriteField(std::size_t i) {
    const FieldDef& field = contents_.schemaData->fields[i];
    out_.Put("  <field name=\"");
    const std::string name = ToUtf8(field.name, DiacriticForm::CommaBelow);
    out_.Put(name);
    const std::string attribute = packet::XmlAttributeOf(i, field.name);
    if (attribute != name) {
      out_.Put("\" attr=\"");
      out_.Put(attribute);
    }
    out_.Put("\" type=\"");
    out_.Put(packet::kXmlTypes[static_cast<std::size_t>(field.type)]);
    if (field.size != 0) {
      Text size;
      AppendDecimal(size, field.size);
      out_.Put("\" size=\"");
      out_.Put(size);
    }
    if (field.collation != Collation::Romanian) {
      out_.Put("\" collation=\"");
      out_.Put(packet::kXmlCollations[static_cast<std::size_t>(field.collation)]);
    }
    const auto flag = [&](FieldFlags flags, std::string_view text) { out_.Put(Has(field.flags, flags) ? text : ""); };
    flag(kKey, "\" key=\"1");
    flag(kRequired, "\" required=\"1");
    flag(kReadOnly, "\" readonly=\"1");
    flag(kCheck, "\" check=\"1");
    flag(kNoCheck, "\" check=\"0");
    const Cell value = store::MakeCell(field, field.defaultValue, contents_.owner);
    if (!value.isNull) {
      const bool isBase64 = TraitsOf(field.type).storage != Storage::Fixed &&
                            (field.type == FieldType::Blob || packet::HasForbidden(field.type, value.bytes));
      out_.Put(isBase64 ? "\" default64=\"" : "\" default=\"");
      isBase64 ? PutBase64(value.bytes) : PutValue(field.type, value);
    }
    out_.Put("\"/>\n");
  }

  void WriteRow(std::uint32_t row) {
    const StoredState state = contents_.StateOf(row);
    out_.Put("   <r");
    inTag_ = 0;
    if (state != StoredState::Unmodified) {
      out_.Put(" state=\"");
      out_.Put(packet::kXmlStates[static_cast<std::size_t>(state)]);
      out_.Put('"');
    }
    for (std::size_t i = 0; i < attributes_.size(); ++i) {
      PutAttribute(i, state == StoredState::Deleted ? contents_.ReadOriginal(row, i) : contents_.Read(row, i));
    }
    if (state != StoredState::Modified && elements_.empty()) {
      out_.Put("/>\n");
      return;
    }
    out_.Put('>');
    PutElements();
    if (state == StoredState::Modified) {
      WriteOriginals(row);
    }
    out_.Put("</r>\n");
  }

  void WriteOriginals(std::uint32_t row) {
    out_.Put("<was");
    inTag_ = 0;
    std::string nulls;
    for (std::size_t i = 0; i < attributes_.size(); ++i) {
      const Cell original = contents_.ReadOriginal(row, i);
      if (store::AreEqual(contents_.columns[i].type, original, contents_.Read(row, i))) {
        continue;
      }
      if (original.isNull) {
        nulls += nulls.empty() ? "" : " ";
        nulls += std::string_view(attributes_[i]).substr(1, attributes_[i].size() - 3);
      } else {
        PutAttribute(i, original);
      }
    }
    if (!nulls.empty()) {
      out_.Put(" null=\"");
      out_.Put(nulls);
      out_.Put('"');
    }
    if (elements_.empty()) {
      out_.Put("/>");
      return;
    }
    out_.Put('>');
    PutElements();
    out_.Put("</was>");
  }

  /// Puts a value as an attribute; bytes, and texts that cannot be in one, are kept for an element, as base64.
  void PutAttribute(std::size_t field, const Cell& cell) {
    if (cell.isNull) {
      return;
    }
    const FieldType type = contents_.columns[field].type;
    if (TraitsOf(type).storage != Storage::Fixed) {
      if (type == FieldType::Blob || inTag_ + cell.bytes.size() > kMostInTag ||
          (!IsPlain(cell.bytes) && packet::HasForbidden(type, cell.bytes))) {
        elements_.push_back({field, cell.bytes});
        return;
      }
      inTag_ += cell.bytes.size();
    }
    out_.Put(attributes_[field]);
    PutValue(type, cell);
    out_.Put('"');
  }

  void PutValue(FieldType type, const Cell& cell) {
    if (TraitsOf(type).storage == Storage::Fixed) {
      out_.Took(packet::WriteValue(out_.Room(packet::kMostValueText), type, cell));
    } else if (type == FieldType::WideText) {
      text_.clear();
      AppendUtf8(text_, std::get<std::u16string_view>(store::ViewOf(type, cell).Get()));
      PutEscaped(text_);
    } else if (IsPlain(cell.bytes)) {
      out_.Put(cell.bytes);
    } else {
      PutEscaped(ToUtf8(cell.bytes, DiacriticForm::CommaBelow));
    }
  }

  void PutElements() {
    for (const auto& [field, bytes] : elements_) {
      out_.Put("<v f=\"");
      out_.Put(std::string_view(attributes_[field]).substr(1, attributes_[field].size() - 3));
      out_.Put("\">");
      PutBase64(bytes);
      out_.Put("</v>");
    }
    elements_.clear();
  }

  /// Large values go in pieces whose digits are whole.
  void PutBase64(std::string_view bytes) {
    constexpr std::size_t kPiece = 3 * std::size_t{4096};
    for (std::size_t at = 0; at < bytes.size(); at += kPiece) {
      text_.clear();
      packet::AppendBase64(text_, bytes.substr(at, kPiece));
      out_.Put(text_);
    }
  }

  void PutEscaped(std::string_view utf8) {
    std::size_t done = 0;
    for (std::size_t at = 0; at < utf8.size(); ++at) {
      const std::string_view escape = EscapeOf(utf8[at]);
      if (!escape.empty()) {
        out_.Put(utf8.substr(done, at - done));
        out_.Put(escape);
        done = at + 1;
      }
    }
    out_.Put(utf8.substr(done));
  }

  /// A reader would make a blank of a line end, and end the value at a quote.
  static std::string_view EscapeOf(char character) noexcept {
    switch (character) {
      case '&':
        return "&amp;";
      case '<':
        return "&lt;";
      case '>':
        return "&gt;";
      case '"':
        return "&quot;";
      case '\t':
        return "&#9;";
      case '\n':
        return "&#10;";
      case '\r':
        return "&#13;";
      default:
        return {};
    }
  }

  /// The most bytes of values in a tag, so that no reader finds it too long, escaped as they may be.
  static constexpr std::size_t kMostInTag = std::size_t{1} << 20U;
  struct ElementValue {
    std::size_t field;
    std::string_view bytes;
  };
  const store::Contents& contents_;
  packet::TextOut out_;
  std::vector<std::string> attributes_;  // " name=\"", by field
  std::vector<ElementValue> elements_;   // the values of the present tag that are elements
  std::size_t inTag_ = 0;                // the bytes of those that are in it
  std::string text_;
};

}  // namespace

void WriteXml(const DatasetView& dataset, const PacketSink& sink) {
  XmlWriter(dataset.GetContents(), sink).Write();
}

void SaveXml(const DatasetView& dataset, const std::filesystem::path& path, const SaveOptions& options) {
  packet::SaveText(path, options, "SaveXml", [&](const PacketSink& sink) { WriteXml(dataset, sink); });
}

}  // namespace kiv
