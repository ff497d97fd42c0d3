#include <gtest/gtest.h>

#include <cstdlib>

#include "apps/kivtools/system/UserSpeech.h"

namespace kivtools {
namespace {

TEST(UserSpeechTest, TheUserIsSpokenToAsTheEnvironmentSays) {
  const struct {
    const char *all, *messages, *type, *lang;
    bool romanian, diacritics;
  } kCases[] = {
      {nullptr, nullptr, nullptr, nullptr, false, true},
      {"", "", "", "ro_RO.UTF-8", true, true},
      {nullptr, nullptr, nullptr, "ro", true, true},
      {nullptr, nullptr, nullptr, "ro@euro", true, true},
      {nullptr, nullptr, nullptr, "ro.utf8", true, true},
      {nullptr, nullptr, nullptr, "ro_RO.ISO-8859-2", true, false},
      {nullptr, nullptr, nullptr, "ro_RO.UTF-8@x", true, true},
      {nullptr, nullptr, nullptr, "rom_RO.UTF-8", false, true},
      {nullptr, nullptr, nullptr, "RO", false, true},
      {nullptr, nullptr, nullptr, "en_RO", false, true},
      {nullptr, "ro_RO", "C.Utf-8", "en_US.ISO-8859-1", true, true},
      {nullptr, "ro_RO", nullptr, "en_US.ISO-8859-1", true, false},
      {nullptr, "en_US.UTF-8", nullptr, "ro_RO.UTF-8", false, true},
      {nullptr, "ro_RO.UTF-8", "ro_RO.ISO-8859-16", "ro_RO.UTF-8", true, false},
      {"C", "ro_RO.UTF-8", "ro_RO.ISO-8859-2", "ro_RO.UTF-8", false, true},
      {"ro_RO.UTF-8", "en", "en.ISO-8859-2", "en", true, true},
  };
  const auto set = [](const char* name, const char* value) {
    value == nullptr ? unsetenv(name) : setenv(name, value, 1);
  };
  for (const auto& [all, messages, type, lang, romanian, diacritics] : kCases) {
    set("LC_ALL", all);
    set("LC_MESSAGES", messages);
    set("LC_CTYPE", type);
    set("LANG", lang);
    const Speech speech = UserSpeech();
    EXPECT_EQ(speech.language == Language::Romanian, romanian) << (lang == nullptr ? "no LANG" : lang);
    EXPECT_EQ(speech.diacritics, diacritics) << (lang == nullptr ? "no LANG" : lang);
  }
  for (const char* const name : {"LC_ALL", "LC_MESSAGES", "LC_CTYPE", "LANG"}) {
    unsetenv(name);
  }
}

}  // namespace
}  // namespace kivtools
