#include "platform/BitmapFile.h"

#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/SafeFile.h"

namespace kiv {
namespace platform {
namespace {

Text Context(TextView operation, const std::filesystem::path& path) {
  return Text(operation) + ": " + ShownPath(path.native());
}

}  // namespace

void SaveBitmap(const bmpfile::Picture& picture, const std::filesystem::path& path, TextView operation) {
  SafeFile file;
  file.Create(path).OrThrow(operation, path);
  bmpfile::Write(picture, Context(operation, path),
                 [&](std::span<const std::uint8_t> bytes) { file.Content().Write(bytes).OrThrow(operation, path); });
  file.Commit().OrThrow(operation, path);
}

Bitmap LoadBitmap(const std::filesystem::path& path, TextView operation) {
  File file;
  file.Open(path, OpenMode::ReadFile).OrThrow(operation, path);
  EntryInfo info;
  file.Query(info).OrThrow(operation, path);
  return bmpfile::Read(info.size, Context(operation, path), [&](std::uint64_t offset, std::span<std::uint8_t> buffer) {
    std::size_t count = 0;
    file.ReadAt(offset, buffer, count).OrThrow(operation, path);
    return count;
  });
}

}  // namespace platform

void Bitmap::SaveToFile(TextView path) const {
  platform::SaveBitmap({pixels_.get(), stride_, width_, height_, format_}, platform::PathFromText(path),
                       "Bitmap::SaveToFile");
}

void Bitmap::LoadFromFile(TextView path) {
  *this = platform::LoadBitmap(platform::PathFromText(path), "Bitmap::LoadFromFile");
}

}  // namespace kiv
