#include "kivtools/CEVersionInfo.h"

#include "core/GlobalTexts.h"
#include "tools/Units.h"

namespace kiv {
namespace {

constexpr std::array<TextView, 10> kKeyNames = {
    "CompanyName",     "FileDescription",  "FileVersion", "InternalName",   "LegalCopyright",
    "LegalTradeMarks", "OriginalFilename", "ProductName", "ProductVersion", "Comments",
};

}  // namespace

std::array<Text, 10> InfoStr = FilledTexts(kKeyNames);

void units::CEVersionInfo::StartUp() {
  InfoStr = FilledTexts(kKeyNames);
}

void units::CEVersionInfo::ShutDown() {
  ReleaseTexts(InfoStr);
}

}  // namespace kiv
