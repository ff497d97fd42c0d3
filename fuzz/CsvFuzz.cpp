#include <cstdlib>

#include "apps/kivtools/CsvWriting.h"

// Fields that are quoted and read back are the same fields, in blocks of any size; and whatever bytes are read, they
// give records or a LineError.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kivtools;
  if (size < 2) {
    return 0;
  }
  const char separator = ",;\t"[data[0] % 3];
  const std::size_t piece = 1 + data[1] % 64U;
  const std::string text(reinterpret_cast<const char*>(data) + 2, size - 2);
  try {
    Records records = ReadRecords(text, piece);
    records.insert(records.begin(), {"tells", "the separator"});
    std::string written;
    for (const auto& record : records) {
      written += WriteRecord(record, separator, data[1] < 128 ? "\n" : "\r\n");
    }
    if (ReadRecords(written, piece) != records) {
      std::abort();
    }
  } catch (const LineError&) {
    if (text.find('"') == std::string::npos) {
      std::abort();  // only quotes can be wrong in so short a file
    }
  }
  return 0;
}
