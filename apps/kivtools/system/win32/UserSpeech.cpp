#include "apps/kivtools/system/UserSpeech.h"

#include <windows.h>

namespace kivtools {

Speech UserSpeech() noexcept {
  const bool romanian = PRIMARYLANGID(GetUserDefaultUILanguage()) == LANG_ROMANIAN;
  return {romanian ? Language::Romanian : Language::English};
}

}  // namespace kivtools
