#include "dataset/arrow/Source.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

#include "dataset/packet/Unicode.h"
#include "dataset/store/SchemaData.h"

namespace kiv::arrow {
namespace {

using store::Cell;
using store::Storage;
using store::TraitsOf;

/// The most that a byte of a text is in UTF-8; a unit of UTF-16 becomes no more either.
constexpr std::uint64_t kMostGrowth = 3;
constexpr std::uint64_t kMostShort = std::numeric_limits<std::int32_t>::max();

bool HandsOutDictionary(const store::Column& column) noexcept {
  return column.type == FieldType::Text && column.texts.HasDictionary();
}

/// No less than the bytes that the texts of one batch, or the entries of the dictionary, are in UTF-8.
std::uint64_t MostBytes(const store::Contents& contents, std::size_t field) {
  const store::Column& column = contents.columns[field];
  std::uint64_t most = 0;
  if (HandsOutDictionary(column)) {
    for (std::uint32_t code = 0; code < column.texts.EntryCount(); ++code) {
      most += column.texts.Read(code, contents.large).size();
    }
    return most * kMostGrowth;
  }
  if (TraitsOf(column.type).storage == Storage::Texts && contents.large.Count() == 0) {
    return std::uint64_t{store::kBlockRows} * store::Texts::kLongest * kMostGrowth;
  }
  for (std::uint32_t block = 0; block < contents.BlockCount(); ++block) {
    std::uint64_t bytes = 0;
    for (std::uint32_t row = block * store::kBlockRows, end = row + contents.RowsIn(block); row < end; ++row) {
      bytes += contents.IsPresent(row) ? contents.Read(row, field).bytes.size() : 0;
    }
    most = std::max(most, bytes);
  }
  return most * kMostGrowth;
}
static_assert(std::uint64_t{store::kBlockRows} * store::Texts::kLongest * kMostGrowth <= kMostShort);

Form FormOf(const store::Contents& contents, std::size_t field, const ArrowExportOptions& options) {
  const store::Column& column = contents.columns[field];
  switch (column.type) {
    case FieldType::Int16:
      return {"s"};
    case FieldType::Int32:
      return {"i"};
    case FieldType::Int64:
    case FieldType::AutoInc:
      return {"l"};
    case FieldType::Currency:
      return {options.amounts == ArrowAmounts::Decimal ? "d:19,4" : "l"};
    case FieldType::Double:
      return {"g"};
    case FieldType::Date:
      return {"tdD"};
    case FieldType::Time:
      return {"ttm"};
    case FieldType::DateTime:
      return {"tsm:"};
    case FieldType::Boolean:
      return {"b"};
    case FieldType::Guid:
      return {"w:16"};
    case FieldType::Text:
    case FieldType::WideText:
    case FieldType::Memo:
    case FieldType::Blob:
      break;
  }
  const bool isLong = MostBytes(contents, field) > kMostShort;
  const char* const format = column.type == FieldType::Blob ? (isLong ? "Z" : "z") : (isLong ? "U" : "u");
  return HandsOutDictionary(column) ? Form{"i", format, isLong} : Form{format, nullptr, isLong};
}

/// What a schema points to.
struct HeldSchema {
  std::string name;
  std::string metadata;
  std::vector<OwnedSchema> children;
  std::vector<ArrowSchema*> addresses;
  OwnedSchema dictionary;
};

void ReleaseSchema(ArrowSchema* schema) {
  // The children that have not been moved go with it.
  delete static_cast<HeldSchema*>(schema->private_data);
  schema->release = nullptr;
}

OwnedSchema SchemaOf(std::unique_ptr<HeldSchema> held, const char* format, std::int64_t flags) {
  ArrowSchema schema{};
  schema.format = format;
  schema.name = held->name.c_str();
  schema.metadata = held->metadata.empty() ? nullptr : held->metadata.data();
  schema.flags = flags;
  for (OwnedSchema& child : held->children) {
    held->addresses.push_back(child.Get());
  }
  schema.n_children = static_cast<std::int64_t>(held->children.size());
  schema.children = held->addresses.data();
  schema.dictionary = held->dictionary->release == nullptr ? nullptr : held->dictionary.Get();
  schema.release = ReleaseSchema;
  schema.private_data = held.release();
  return OwnedSchema(schema);
}

/// One key with its value, as the interface has them.
std::string MetadataOf(std::string_view key, std::string_view value) {
  std::string metadata;
  const auto putNumber = [&](std::size_t number) {
    const auto narrow = static_cast<std::int32_t>(number);
    metadata.append(reinterpret_cast<const char*>(&narrow), sizeof narrow);
  };
  putNumber(1);
  for (const std::string_view text : {key, value}) {
    putNumber(text.size());
    metadata += text;
  }
  return metadata;
}

}  // namespace

Source::Source(Snapshot taken, const ArrowExportOptions& options) : snapshot(std::move(taken)) {
  for (std::size_t field = 0; field < Contents().columns.size(); ++field) {
    forms.push_back(FormOf(Contents(), field, options));
  }
}

OwnedSchema MakeSchema(const Source& source) {
  auto held = std::make_unique<HeldSchema>();
  const auto& fields = source.Contents().schemaData->fields;
  held->addresses.reserve(fields.size());
  for (std::size_t i = 0; i < fields.size(); ++i) {
    auto column = std::make_unique<HeldSchema>();
    column->name = ToUtf8(fields[i].name, DiacriticForm::CommaBelow);
    if (fields[i].type == FieldType::Guid) {
      column->metadata = MetadataOf("ARROW:extension:name", "arrow.uuid");
    }
    if (source.forms[i].dictionary != nullptr) {
      column->dictionary = SchemaOf(std::make_unique<HeldSchema>(), source.forms[i].dictionary, 0);
    }
    const bool isNeverNull = Has(fields[i].flags, kKey) || Has(fields[i].flags, kRequired);
    held->children.push_back(
        SchemaOf(std::move(column), source.forms[i].format, isNeverNull ? 0 : ARROW_FLAG_NULLABLE));
  }
  return SchemaOf(std::move(held), "+s", 0);
}

TextGatherer::TextGatherer(std::size_t count, bool isLong) : isLong_(isLong) {
  const std::size_t width = isLong ? sizeof(std::int64_t) : sizeof(std::int32_t);
  texts_.offsets = std::make_unique_for_overwrite<std::byte[]>((count + 1) * width);
  PutEnd();
}

void TextGatherer::PutEnd() {
  if (isLong_) {
    const auto end = static_cast<std::int64_t>(texts_.bytes.size());
    std::memcpy(texts_.offsets.get() + next_ * sizeof end, &end, sizeof end);
  } else {
    const auto end = static_cast<std::int32_t>(texts_.bytes.size());
    std::memcpy(texts_.offsets.get() + next_ * sizeof end, &end, sizeof end);
  }
  ++next_;
}

void TextGatherer::Put(FieldType type, std::string_view bytes) {
  const auto isAscii = [](char character) { return static_cast<unsigned char>(character) < 0x80; };
  if (type == FieldType::WideText) {
    const Cell cell = {.bytes = bytes, .isNull = false};
    AppendUtf8(texts_.bytes, std::get<std::u16string_view>(store::ViewOf(type, cell).Get()));
  } else if (type == FieldType::Blob || std::ranges::all_of(bytes, isAscii)) {
    texts_.bytes += bytes;
  } else {
    texts_.bytes += ToUtf8(bytes, DiacriticForm::CommaBelow);
  }
  PutEnd();
}

TextBuffers TextGatherer::Take() noexcept {
  return std::move(texts_);
}

}  // namespace kiv::arrow
