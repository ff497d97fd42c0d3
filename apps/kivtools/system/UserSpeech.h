#pragma once

#include "apps/kivtools/Language.h"

namespace kivtools {

/// How the system's user is to be spoken to. On POSIX the first of LC_ALL, LC_MESSAGES and LANG that is set names the
/// language, and the first of LC_ALL, LC_CTYPE and LANG may name letters other than UTF-8, which the diacritics are
/// left out for; on Windows it is the language of the user's desktop.
Speech UserSpeech() noexcept;

}  // namespace kivtools
