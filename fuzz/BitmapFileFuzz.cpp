// Any bytes are a picture or are refused; a picture is written and read again as it was, and takes no more memory than
// its file makes likely.
#include <algorithm>
#include <span>
#include <vector>

#include "core/BitmapFile.h"
#include "fuzz/Property.h"

namespace {

using kiv::Bitmap;
using Bytes = std::span<const std::uint8_t>;

Bitmap Read(Bytes file) {
  return kiv::bmpfile::Read(file.size(), "Read", [&](std::uint64_t offset, std::span<std::uint8_t> buffer) {
    const auto start = static_cast<std::size_t>(std::min<std::uint64_t>(offset, file.size()));
    const std::size_t count = std::min(buffer.size(), file.size() - start);
    std::copy_n(file.begin() + static_cast<std::ptrdiff_t>(start), count, buffer.begin());
    return count;
  });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  Bitmap bitmap;
  try {
    bitmap = Read({bytes, size});
  } catch (const kiv::Error&) {
    return 0;
  }
  const bool empty = bitmap.Width() == 0 || bitmap.Height() == 0;
  REQUIRE(empty ||
          static_cast<std::uint64_t>(bitmap.Stride()) * static_cast<std::uint64_t>(bitmap.Height()) <= 24 * size);
  std::vector<std::uint8_t> written;
  kiv::bmpfile::Write(
      {empty ? nullptr : bitmap.ScanLine(0), bitmap.Stride(), bitmap.Width(), bitmap.Height(), bitmap.Format()},
      "Write", [&](Bytes piece) { written.insert(written.end(), piece.begin(), piece.end()); });
  REQUIRE(Read(written) == bitmap);
  return 0;
}
