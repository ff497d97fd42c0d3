#include <cerrno>
#include <new>

#include "dataset/arrow/Source.h"

namespace kiv {
namespace arrow {
namespace {

/// A stream that is on its way through the blocks.
struct Export {
  std::shared_ptr<Source> source;
  std::uint32_t next = 0;
  const char* fault = nullptr;
};

/// Does what gives a struct. Whatever fails, nothing is given and it may be asked for again.
template <class Struct, class Make>
int Give(ArrowArrayStream* stream, Struct* out, Make make) noexcept {
  auto& exported = *static_cast<Export*>(stream->private_data);
  exported.fault = nullptr;
  try {
    *out = make(exported).Release();
    return 0;
  } catch (...) {
    exported.fault = "memorie insuficienta";
    return ENOMEM;
  }
}

int GiveSchema(ArrowArrayStream* stream, ArrowSchema* out) {
  return Give(stream, out, [](const Export& exported) { return MakeSchema(*exported.source); });
}

/// As UTF-8, for all batches: each of them hands out the same.
void MakeDictionaries(Source& source) {
  const store::Contents& contents = source.Contents();
  std::vector<DictionaryTexts> made(contents.columns.size());
  for (std::size_t field = 0; field < made.size(); ++field) {
    if (source.forms[field].dictionary == nullptr) {
      continue;
    }
    const store::Texts& texts = contents.columns[field].texts;
    TextGatherer gatherer(texts.EntryCount(), source.forms[field].isLong);
    for (std::uint32_t code = 0; code < texts.EntryCount(); ++code) {
      gatherer.Put(FieldType::Text, texts.Read(code, contents.large));
    }
    made[field] = {gatherer.Take(), texts.EntryCount()};
  }
  source.dictionaries = std::move(made);
}

int GiveBatch(ArrowArrayStream* stream, ArrowArray* out) {
  return Give(stream, out, [](Export& exported) {
    if (exported.source->dictionaries.empty()) {
      MakeDictionaries(*exported.source);
    }
    OwnedArray batch;
    // Blocks whose rows are all deleted give nothing.
    while (batch->release == nullptr && exported.next < exported.source->Contents().BlockCount()) {
      batch = MakeBatch(exported.source, exported.next);
      ++exported.next;
    }
    return batch;
  });
}

const char* Fault(ArrowArrayStream* stream) {
  return static_cast<const Export*>(stream->private_data)->fault;
}

void ReleaseStream(ArrowArrayStream* stream) {
  delete static_cast<Export*>(stream->private_data);
  stream->release = nullptr;
}

}  // namespace
}  // namespace arrow

void ExportArrow(const Snapshot& snapshot, ArrowArrayStream& stream, const ArrowExportOptions& options) {
  auto exported = std::make_unique<arrow::Export>(arrow::Export{std::make_shared<arrow::Source>(snapshot, options)});
  stream = {arrow::GiveSchema, arrow::GiveBatch, arrow::Fault, arrow::ReleaseStream, exported.release()};
}

}  // namespace kiv
