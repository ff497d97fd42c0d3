#include <gmock/gmock.h>
#include <windows.h>

#include "platform/Files.h"
#include "platform/TestFolder.h"

namespace kiv::platform {
namespace {

TEST(WindowsFiles, AreNamedInEveryFormThatTheSystemKnows) {
  const TestFolder folder;
  WriteWhole(folder / "a", "unu");
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(folder.Path());
  const std::wstring whole = folder.Path().native();
  std::wstring slashes = whole;
  std::ranges::replace(slashes, L'\\', L'/');
  for (const std::wstring& name : {std::wstring(L"a"), std::wstring(L".\\none\\..\\a"), whole + L"\\a", slashes + L"/a",
                                   L"\\\\?\\" + whole + L"\\a", L"\\\\.\\" + whole + L"\\a"}) {
    EntryInfo info;
    EXPECT_EQ(Query(Folder::Working(), name, Links::Followed, info).Code(), 0) << ShownPath(name);
    EXPECT_EQ(info.size, 3U) << ShownPath(name);
  }
  std::filesystem::current_path(before);
}

TEST(WindowsFiles, ThatAreDevicesAreRefused) {
  File file;
  EXPECT_EQ(file.Open(L"NUL", OpenMode::ReadFile).Code(), ERROR_NOT_SUPPORTED);
  EXPECT_FALSE(file.IsOpen());
  EXPECT_EQ(file.Open(L"", OpenMode::ReadFile).Code(), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(file.Open(std::wstring(40'000, L'n'), OpenMode::ReadFile).Code(), ERROR_FILENAME_EXCED_RANGE);
}

TEST(WindowsFiles, OfAServerThatIsNotThereAreNotFound) {
  EntryInfo info;
  EXPECT_TRUE(Query(Folder::Working(), L"\\\\kivtools-no-such-server\\share\\a", Links::Followed, info).Failed());
}

TEST(WindowsStatus, IsAFailureEvenWithoutACode) {
  SetLastError(0);
  EXPECT_EQ(LastStatus().Code(), ERROR_GEN_FAILURE);
  SetLastError(ERROR_SHARING_VIOLATION);
  EXPECT_EQ(LastStatus().Code(), ERROR_SHARING_VIOLATION);
  for (const long code : {ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND}) {
    EXPECT_TRUE(SystemStatus(static_cast<std::int32_t>(code)).IsMissing());
  }
  for (const long code : {ERROR_FILE_EXISTS, ERROR_ALREADY_EXISTS}) {
    EXPECT_TRUE(SystemStatus(static_cast<std::int32_t>(code)).IsExisting());
  }
}

}  // namespace
}  // namespace kiv::platform
