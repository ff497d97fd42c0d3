#include "kivtools/CEVersionInfo.h"

#include <utility>

#include "core/GlobalTexts.h"
#include "core/Units.h"
#include "platform/Paths.h"
#include "platform/Program.h"
#include "tools/CEVersionInfo/VersionTexts.h"

namespace kiv {
namespace {

Text JoinedParts(const version::VersionTexts& texts) {
  return texts.parts[0] + "." + texts.parts[1] + "." + texts.parts[2] + "." + texts.parts[3];
}

}  // namespace

std::array<Text, 10> InfoStr = FilledTexts(version::kKeyNames);

TCEVersionInfo::TCEVersionInfo(host::Component* owner) : Component(owner) {
  Take(version::ReadVersionTexts(platform::ProgramFile()));
}

TCEVersionInfo::~TCEVersionInfo() = default;

TextView TCEVersionInfo::ClassName() const {
  return "TCEVersionInfo";
}

void TCEVersionInfo::GetInfo(TextView fileName) {
  Take(version::ReadVersionTexts(platform::PathFromText(fileName)));
}

void TCEVersionInfo::Take(version::VersionTexts&& texts) {
  const std::array<Text*, 10> strings = {
      &CompanyName,     &FileDescription,  &FileVersion, &Internalname,   &LegalCopyright,
      &LegalTradeMarks, &OriginalFilename, &ProductName, &ProductVersion, &Comments,
  };
  const std::array<Text*, 4> parts = {&MajorVersion, &MinorVersion, &Release, &Build};
  for (std::size_t i = 0; i < strings.size(); ++i) {
    *strings[i] = std::move(texts.strings[i]);
  }
  for (std::size_t i = 0; i < parts.size(); ++i) {
    *parts[i] = std::move(texts.parts[i]);
  }
  fixedInfo_ = texts.fixedInfo;
}

Text NamedFileVersionInfo(TextView fileName) {
  return JoinedParts(version::ReadVersionTexts(platform::PathFromText(fileName)));
}

Text ThisExeVersionInfo() {
  return JoinedParts(version::ReadVersionTexts(platform::ProgramFile()));
}

void Register() {
  const auto create = [](host::Component* owner) -> host::Component* { return new TCEVersionInfo(owner); };
  host::Current().RegisterComponent({"CESystem", "TCEVersionInfo", create});
}

void units::CEVersionInfo::StartUp() {
  InfoStr = FilledTexts(version::kKeyNames);
}

void units::CEVersionInfo::ShutDown() {
  ReleaseTexts(InfoStr);
}

}  // namespace kiv
