#include <cstdio>
#include <string_view>

#include "platform/SafeFile.h"

/// Replaces the file that the first argument names by the text of the second; with "backup" as the third the former
/// file is kept. Every failure is said and gives 1.
int main(int count, char** arguments) {
  using namespace kiv::platform;
  const std::filesystem::path path = arguments[1];
  const std::string_view content = arguments[2];
  try {
    SafeFile file;
    file.Create(path).OrThrow("Create", path);
    file.Content()
        .Write({reinterpret_cast<const std::uint8_t*>(content.data()), content.size()})
        .OrThrow("Write", path);
    file.Commit(Durability::Flushed, count > 3 ? Backup::Kept : Backup::None).OrThrow("Commit", path);
    return 0;
  } catch (const kiv::OsError& error) {
    std::fprintf(stderr, "%s (%d)\n", error.what(), static_cast<int>(error.Code()));
    return 1;
  }
}
