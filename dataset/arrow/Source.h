#pragma once

#include <memory>
#include <string>
#include <vector>

#include "dataset/arrow/Owned.h"
#include "dataset/store/Contents.h"
#include "kivtools/dataset/Arrow.h"

/// What a snapshot is handed out as.
namespace kiv::arrow {

/// Memory that was made for a buffer.
using Memory = std::unique_ptr<std::byte[]>;

/// How a field is handed out.
struct Form {
  const char* format;                ///< of the column: with a dictionary, of the numbers of its entries
  const char* dictionary = nullptr;  ///< the format of its entries
  bool isLong = false;               ///< texts have offsets of 64 bits
};

/// The texts of a column one after another, and where each begins; one more place than texts.
struct TextBuffers {
  Memory offsets;
  std::string bytes;
};

/// The entries of a field's dictionary, for all batches.
struct DictionaryTexts {
  TextBuffers texts;
  std::uint32_t count = 0;
};

/// What all arrays of an export share and keep alive.
struct Source {
  Snapshot snapshot;
  std::vector<Form> forms;  ///< by field
  /// By field; made with the first batch, unchanged from then on.
  std::vector<DictionaryTexts> dictionaries;

  Source(Snapshot taken, const ArrowExportOptions& options);
  [[nodiscard]] const store::Contents& Contents() const noexcept { return snapshot.GetContents(); }
};

/// The type of all batches. Throws std::bad_alloc.
OwnedSchema MakeSchema(const Source& source);
/// The rows of a block that are not deleted, or an array of none. Throws std::bad_alloc.
OwnedArray MakeBatch(const std::shared_ptr<const Source>& source, std::uint32_t block);

/// Gathers texts in the form of a column's buffers.
class TextGatherer {
 public:
  TextGatherer(std::size_t count, bool isLong);
  /// Puts the next text: Windows-1250, UTF-16 or bytes, as the type has it; nothing for a null.
  void Put(FieldType type, std::string_view bytes);
  [[nodiscard]] TextBuffers Take() noexcept;

 private:
  void PutEnd();

  TextBuffers texts_;
  bool isLong_;
  std::size_t next_ = 0;
};

}  // namespace kiv::arrow
