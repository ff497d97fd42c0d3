// The unit's globals with their life cycle; its operations live in WinUtil/, one file for each family.
#include "kivtools/WinUtil.h"

#include "core/GlobalTexts.h"
#include "core/Units.h"

namespace kiv {
namespace {

constexpr std::array<TextView, 12> kMonths = {
    "Ianuarie", "Februarie", "Martie",     "Aprilie",   "Mai",       "Iunie",
    "Iulie",    "August",    "Septembrie", "Octombrie", "Noiembrie", "Decembrie",
};
constexpr std::array<TextView, 12> kShortMonths = {
    "ian", "feb", "mar", "apr", "mai", "iun", "iul", "aug", "sep", "oct", "nov", "dec",
};

}  // namespace

std::array<Text, 12> NumeLuna = FilledTexts(kMonths);
std::array<Text, 12> NumeLunaScurt = FilledTexts(kShortMonths);
Text TempFilePath;
std::function<void(const StringList&, const StringList&, Text&, Text&)> OnProcFaZipPentruDischeta;

void units::WinUtil::StartUp() {
  TempFilePath = ReadWindowsTempPath();
  NumeLuna = FilledTexts(kMonths);
  NumeLunaScurt = FilledTexts(kShortMonths);
}

void units::WinUtil::ShutDown() {
  ReleaseTexts(NumeLuna);
  ReleaseTexts(NumeLunaScurt);
  TempFilePath = Text();
}

}  // namespace kiv
