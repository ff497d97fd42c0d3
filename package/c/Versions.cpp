#include "kivtools/c/Versions.h"

#include <array>

#include "kivtools/CEVersionInfo.h"
#include "kivtools/WinUtil/Versions.h"
#include "package/c/Abi.h"
#include "package/c/StringList.h"
#include "platform/Paths.h"
#include "tools/CEVersionInfo/VersionTexts.h"

using namespace kiv::c;

namespace {

constexpr std::array<kiv::TextView, 4> kPartNames = {"MajorVersion", "MinorVersion", "Release", "Build"};

}  // namespace

extern "C" {

KivAnswer KivAnalizeazaNrVersiune(int32_t* major, int32_t* minor, int32_t* release, int32_t* build, const char* version,
                                  size_t length) {
  return GiveAnswer([=] {
    int32_t& first = KIV_REQUIRED(major);
    int32_t& second = KIV_REQUIRED(minor);
    int32_t& third = KIV_REQUIRED(release);
    int32_t& fourth = KIV_REQUIRED(build);
    const kiv::TextView text = KIV_TEXT(version, length);
    return kiv::AnalizeazaNrVersiune(first, second, third, fourth, text);
  });
}

KivAnswer KivNumarulDeVersiuneEsteValid(const char* version, size_t length) {
  return GiveAnswer([=] { return kiv::NumarulDeVersiuneEsteValid(KIV_TEXT(version, length)); });
}

KivStatus KivCompareNrVersiune(const char* a, size_t aLength, const char* b, size_t bLength, int32_t* difference) {
  return Run([=] {
    int32_t& result = KIV_REQUIRED(difference);
    result = kiv::CompareNrVersiune(KIV_TEXT(a, aLength), KIV_TEXT(b, bLength));
  });
}

KivLength KivGetFileVersionKiv(const char* fileName, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::GetFileVersionKiv(KIV_TEXT(fileName, length)); });
}

KivLength KivNamedFileVersionInfo(const char* fileName, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::NamedFileVersionInfo(KIV_TEXT(fileName, length)); });
}

KivLength KivThisExeVersionInfo(char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [] { return kiv::ThisExeVersionInfo(); });
}

KivStatus KivVersionInfo(const char* fileName, size_t length, KivStringList* fields, KivFixedFileInfo* fixedInfo) {
  return Run([=] {
    kiv::StringList& items = KIV_REQUIRED(fields).items;
    const kiv::TextView path = KIV_TEXT(fileName, length);
    const auto texts = kiv::version::ReadVersionTexts(kiv::platform::PathFromText(path));
    kiv::StringList all(texts.strings.begin(), texts.strings.end());
    all.insert(all.end(), texts.parts.begin(), texts.parts.end());
    items = std::move(all);
    if (fixedInfo != nullptr) {
      static_assert(sizeof *fixedInfo == sizeof texts.fixedInfo);
      std::memcpy(fixedInfo, &texts.fixedInfo, sizeof *fixedInfo);
    }
  });
}

KivLength KivVersionFieldName(int32_t field, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=]() -> kiv::TextView {
    if (field < 0 || field >= KIV_VERSION_FIELDS) {
      throw ArgumentError("field " + std::to_string(field) + " nu exista");
    }
    const auto index = static_cast<std::size_t>(field);
    const std::size_t strings = kiv::version::kKeyNames.size();
    return index < strings ? kiv::version::kKeyNames[index] : kPartNames[index - strings];
  });
}

}  // extern "C"
