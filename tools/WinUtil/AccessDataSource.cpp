// The data source of an Access database: a file for ODBC and the connection string that names it.
#include <array>

#include "kivtools/WinUtil/Paths.h"
#include "kivtools/WinUtil/Transliteration.h"
#include "platform/FolderCreation.h"
#include "platform/Paths.h"
#include "platform/SafeFile.h"

namespace kiv {
namespace {

constexpr TextView kOperation = "ConnectionStringForMdb";

// "%slash%" is the system's separator.
constexpr std::array<TextView, 13> kFileLines = {
    "[ODBC]",
    "DRIVER=Microsoft Access Driver (*.mdb)",
    "UID=admin",
    "UserCommitSync=Yes",
    "Threads=3",
    "SafeTransactions=0",
    "PageTimeout=5",
    "MaxScanRows=8",
    "MaxBufferSize=2048",
    "FIL=MS Access",
    "DriverId=25",
    "DefaultDir=%path%",
    "DBQ=%path%%slash%%name%",
};

constexpr std::array<TextView, 17> kConnectionPieces = {
    "Provider=MSDASQL.1;",
    "Persist Security Info=False;",
    "Extended Properties=\"",
    "DBQ=%path%%slash%%name%;",
    "DefaultDir=%path%;",
    "Driver={Microsoft Access Driver (*.mdb)};",
    "DriverId=25;",
    "FIL=MS Access;",
    "FILEDSN=%path%%slash%auto_dsn.dsn;",
    "MaxBufferSize=2048;",
    "MaxScanRows=8;",
    "PageTimeout=5;",
    "SafeTransactions=0;",
    "Threads=3;",
    "UID=admin;",
    "UserCommitSync=Yes;",
    "\"",
};

/// Writes a file that nobody ever sees in part.
void WriteWhole(const std::filesystem::path& path, TextView content) {
  platform::SafeFile file;
  file.Create(path).OrThrow(kOperation, path);
  file.Content()
      .Write({reinterpret_cast<const std::uint8_t*>(content.data()), content.size()})
      .OrThrow(kOperation, path);
  file.Commit(platform::Durability::Written).OrThrow(kOperation, path);
}

}  // namespace

Text ConnectionStringForMdb(TextView file) {
  if (file.find_first_of(TextView("\r\n\0", 3)) != TextView::npos) {
    // A line break would put lines of its own into the file.
    throw Error(Text(kOperation) + ": calea contine un sfarsit de linie sau un zero: \"" + Text(file) + "\"");
  }
  Text folder(platform::FolderWithSeparator(file));
  const Text name(file.substr(folder.size()));
  const Text separator(1, platform::kPathSeparator);
  if (!folder.empty() && folder.back() != ':') {
    folder.pop_back();
  }
  const StringList pairs = {"path", folder, "name", name, "slash", separator};

  Text lines;
  for (const TextView line : kFileLines) {
    lines += MaskReplace(line, pairs) + "\r\n";
  }
  const std::filesystem::path nativeFolder = platform::PathFromText(folder);
  platform::MakeFolders(nativeFolder).OrThrow(kOperation, nativeFolder);
  WriteWhole(platform::PathFromText(folder + separator + "auto_dsn.dsn"), lines);

  Text connection;
  for (const TextView piece : kConnectionPieces) {
    connection += MaskReplace(piece, pairs);
  }
  return connection;
}

}  // namespace kiv
