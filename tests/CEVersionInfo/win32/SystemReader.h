#pragma once

#include <windows.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "kivtools/CEVersionInfo.h"

/// What the library's reader of version resources and the system's own make of one file.
namespace kiv::test {

inline constexpr TextView kNone = "<info not available>";

/// The ten strings in the order of InfoStr, then the fixed information as bytes; kNone ten times and nothing where
/// there is no resource.
using Answer = StringList;

inline Text To1250(const wchar_t* text, UINT length) {
  std::wstring cut(text, length);
  cut.resize(std::min(cut.find(L'\0'), cut.size()));
  for (wchar_t& letter : cut) {  // the library takes today's letters with a comma below for those with a cedilla
    letter = letter == L'\u0219' ? L'\u015F' : letter == L'\u021B' ? L'\u0163' : letter;
  }
  Text bytes(cut.size() * 2, '\0');
  const int count = WideCharToMultiByte(1250, WC_NO_BEST_FIT_CHARS, cut.data(), static_cast<int>(cut.size()),
                                        bytes.data(), static_cast<int>(bytes.size()), "?", nullptr);
  bytes.resize(static_cast<std::size_t>(count));
  return bytes;
}

/// What the system says; nothing where it has no translation, which the library answers in its own way.
inline std::optional<Answer> AskSystem(const std::filesystem::path& path) {
  Answer answer(10, Text(kNone));
  DWORD ignored = 0;
  const DWORD size = GetFileVersionInfoSizeW(path.c_str(), &ignored);
  std::vector<std::uint8_t> block(size);
  if (size == 0 || GetFileVersionInfoW(path.c_str(), 0, size, block.data()) == 0) {
    answer.emplace_back();
    return answer;
  }
  void* value = nullptr;
  UINT length = 0;
  const bool narrow = block[4] >= ' ';  // of a 16-bit program: single bytes, as they are
  const BOOL listed = narrow ? VerQueryValueA(block.data(), "\\\\VarFileInfo\\\\Translation", &value, &length)
                             : VerQueryValueW(block.data(), L"\\\\VarFileInfo\\\\Translation", &value, &length);
  if (listed == 0 || length < 4) {
    return std::nullopt;
  }
  char table[64];
  const auto* const translation = static_cast<const std::uint16_t*>(value);
  wsprintfA(table, "\\\\StringFileInfo\\\\%.4x%.4x\\\\", translation[0], translation[1]);
  for (std::size_t i = 0; i < answer.size(); ++i) {
    const Text key = table + InfoStr[i];
    if (narrow) {
      const bool found = VerQueryValueA(block.data(), key.c_str(), &value, &length) != 0;
      answer[i] = found ? static_cast<const char*>(value) : "";
    } else {
      const std::wstring wideKey(key.begin(), key.end());
      const bool found = VerQueryValueW(block.data(), wideKey.c_str(), &value, &length) != 0;
      answer[i] = found ? To1250(static_cast<const wchar_t*>(value), length) : Text();
    }
  }
  const bool found = VerQueryValueW(block.data(), L"\\", &value, &length) != 0;
  answer.emplace_back(static_cast<const char*>(value), found ? std::min<UINT>(length, 52) : 0);
  return answer;
}

inline Answer AskLibrary(const std::filesystem::path& path) {
  TCEVersionInfo info;
  info.GetInfo(path.string());
  Answer answer = {info.CompanyName,    info.FileDescription, info.FileVersion,      info.Internalname,
                   info.LegalCopyright, info.LegalTradeMarks, info.OriginalFilename, info.ProductName,
                   info.ProductVersion, info.Comments};
  static_assert(sizeof(FixedFileInfo) == 52);
  const bool available = answer[0] != kNone;
  answer.emplace_back(reinterpret_cast<const char*>(&info.FixedInfo()), available ? 52 : 0);
  return answer;
}

}  // namespace kiv::test
