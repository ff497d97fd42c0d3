/// @file
/// The unit CEVersionInfo: version resources of executable files. They are read by the library itself, the same on
/// every system, so any file at all may be given: what is no Windows executable, has no version resource,
/// or is damaged reads as "<info not available>", and nothing else happens. At most 64 KiB of a file are read.
#pragma once

#include <array>
#include <cstdint>

#include "kivtools/Host.h"
#include "kivtools/Types.h"

namespace kiv {

namespace version {
struct VersionTexts;
}

/// The key names of a version resource's strings, in the order in which they are read. Valid from load until
/// Finalize() releases them; Initialize() fills them anew. Example: `InfoStr[0]` is "CompanyName".
extern KIV_API std::array<Text, 10> InfoStr;

/// The fixed-information block of a version resource, as it is in the file: 13 numbers. Each 64-bit version is two
/// of them, four parts of 16 bits, the first part uppermost.
struct FixedFileInfo {
  std::uint32_t signature = 0;         ///< 0xFEEF04BD in a valid block
  std::uint32_t structureVersion = 0;  ///< 0x00010000
  std::uint32_t fileVersionHigh = 0;   ///< 0x0005000C for 5.12
  std::uint32_t fileVersionLow = 0;
  std::uint32_t productVersionHigh = 0;
  std::uint32_t productVersionLow = 0;
  std::uint32_t fileFlagsMask = 0;  ///< which of the flags are valid
  std::uint32_t fileFlags = 0;      ///< 1 debug, 2 prerelease, 4 patched, 8 private, 32 special build
  std::uint32_t fileSystem = 0;
  std::uint32_t fileType = 0;  ///< 1 program, 2 library
  std::uint32_t fileSubtype = 0;
  std::uint32_t fileDateHigh = 0;
  std::uint32_t fileDateLow = 0;
};

/// Reads the version resource of an executable file and holds its strings. The first ten members come from the keys of
/// InfoStr in the first language that the resource lists in its translations (without translations: in its first string
/// table); a missing key gives the empty Text. Letters that Windows-1250 lacks are "?". The last four are the parts of
/// `FileVersion`, separated by "." or, where it has none, by ",".
///
/// As a component it may have an owner that deletes it; see host::Component.
///
///     TCEVersionInfo info;
///     info.GetInfo("app.exe");   // FileVersion "5, 12, 0, 341" gives Major "5", Minor " 12", " 0" and " 341"
class KIV_API TCEVersionInfo : public host::Component {
 public:
  /// Reads the running program's own file.
  explicit TCEVersionInfo(host::Component* owner = nullptr);
  ~TCEVersionInfo() override;

  /// "TCEVersionInfo".
  [[nodiscard]] TextView ClassName() const override;

  /// Reads the version resource of the file at a path (Windows-1250 on Windows, bytes on POSIX) into the members. All
  /// fourteen are "<info not available>" where the file is missing or has no sound version resource; the last four also
  /// where `FileVersion` is empty or has neither "." nor ",". Raises nothing on account of the file.
  ///
  ///     info.GetInfo("/etc/passwd");   // info.CompanyName == "<info not available>"
  void GetInfo(TextView fileName);

  /// The fixed-information block of the file read last, all zero where it has none; what the file holds of it counts.
  [[nodiscard]] const FixedFileInfo& FixedInfo() const noexcept { return fixedInfo_; }

  Text CompanyName;       ///< who made the file
  Text FileDescription;   ///< what it is, for people
  Text FileVersion;       ///< its version as text. Example: "5.12.0.341"
  Text Internalname;      ///< key "InternalName"
  Text LegalCopyright;    ///< copyright notices
  Text LegalTradeMarks;   ///< trademark notices
  Text OriginalFilename;  ///< the file's name when it was made
  Text ProductName;       ///< the product that it belongs to
  Text ProductVersion;    ///< that product's version
  Text Comments;          ///< remarks
  Text MajorVersion;      ///< the first part of `FileVersion`
  Text MinorVersion;      ///< the second part; empty where `FileVersion` has fewer separators
  Text Release;           ///< the third part; empty likewise
  Text Build;             ///< the rest of `FileVersion`

 private:
  void Take(version::VersionTexts&& texts);

  FixedFileInfo fixedInfo_;
};

/// A file's version: its four parts joined by dots.
///
///     NamedFileVersionInfo("app.exe")       // "5.12.0.341"
///     NamedFileVersionInfo("/etc/passwd")   // four times "<info not available>", joined by dots
[[nodiscard]] KIV_API Text NamedFileVersionInfo(TextView fileName);

/// The same for the running program's own file. Example: "5.12.0.341".
[[nodiscard]] KIV_API Text ThisExeVersionInfo();

/// Registers TCEVersionInfo with the application's form designer, on the palette page "CESystem".
/// Example: afterwards `host::Current().Palette()` has it, where the application has no designer of its own.
KIV_API void Register();

}  // namespace kiv
