#include "kivtools/WideTools/CodePages.h"

#include <atomic>

#include "core/Units.h"
#include "platform/CodePages.h"

namespace kiv {

bool page_1250_ok = false;
std::int32_t page_1250_replace = 0;

namespace {

using namespace literals;

constexpr std::int32_t kWindows1250 = 1250;

enum class UnicodeSystem : std::uint8_t { Unknown, No, Yes };
// Two first calls at once find the same answer.
std::atomic<UnicodeSystem> unicode_system = UnicodeSystem::Unknown;

std::uint32_t CodePageInUse(std::int32_t asked) {
  const bool replaced = asked == kWindows1250 && page_1250_replace != 0;
  return static_cast<std::uint32_t>(replaced ? page_1250_replace : asked);
}

}  // namespace

WideText StringToWideString(TextView text, std::int32_t codePage) {
  return platform::code_pages_service.Current().ToWide(text, CodePageInUse(codePage));
}

Text WideStringToString(std::u16string_view wide, std::int32_t codePage) {
  return platform::code_pages_service.Current().FromWide(wide, CodePageInUse(codePage));
}

bool IsWinOsUnicode() {
  if (unicode_system == UnicodeSystem::Unknown) {
    switch (platform::code_pages_service.Current().FamilyOfSystem()) {
      case 0:
        throw Error("*NU* Rulez pe Win 3.1");
      case 1:
        unicode_system = UnicodeSystem::No;
        break;
      case 2:
        unicode_system = UnicodeSystem::Yes;
        break;
      default:
        throw Error("Nu am reusit sa determin daca OS-ul are suport pentru Unicode sau nu");
    }
  }
  return unicode_system == UnicodeSystem::Yes;
}

Text UpCaseAsCodePage(TextView /*text*/, std::int32_t /*codePage*/) {
  return {};
}

void units::WideTools::StartUp() {
  constexpr TextView kProbe = "ăşţâîĂŞŢÂÎ"_ro;
  unicode_system = UnicodeSystem::Unknown;
  page_1250_replace = 0;
  page_1250_ok = WideStringToString(StringToWideString(kProbe, kWindows1250), kWindows1250) == kProbe;
  page_1250_replace =
      page_1250_ok ? kWindows1250 : static_cast<std::int32_t>(platform::code_pages_service.Current().AnsiCodePage());
}

}  // namespace kiv
