#include "Expect.h"

void VersionsTest(void) {
  static const char none[] = "<info not available>";
  KivStringList* fields = KivStringListNew();
  KivFixedFileInfo fixedInfo;
  int32_t parts[4];
  EXPECT(KivAnalizeazaNrVersiune(&parts[0], &parts[1], &parts[2], &parts[3], "4.5x", 4) == 0);
  EXPECT(parts[0] == 4 && parts[1] == 5 && parts[2] == 0 && parts[3] == 0);
  EXPECT(KivAnalizeazaNrVersiune(&parts[0], &parts[1], &parts[2], &parts[3], "1.2.3.4", 7) == 1);
  EXPECT(parts[0] == 1 && parts[1] == 2 && parts[2] == 3 && parts[3] == 4);
  EXPECT(KivNumarulDeVersiuneEsteValid("1.2.3.", KIV_ZERO_ENDED) == 1);
  EXPECT(KivCompareNrVersiune("1.10", 4, "1.9", 3, &parts[0]) == KIV_OK && parts[0] == 1);
  EXPECT(KivCompareNrVersiune("x", 1, "1.9", 3, &parts[0]) == -KIV_ERROR_GENERAL);
  EXPECT(LastMessageIs("x nu este un numar de versiune valid"));
  GIVES(none, KivGetFileVersionKiv, "", 0);
  GIVES("<info not available>.<info not available>.<info not available>.<info not available>", KivNamedFileVersionInfo,
        "", 0);
  EXPECT(KivThisExeVersionInfo(NULL, 0) == 83);
  memset(&fixedInfo, 7, sizeof fixedInfo);
  EXPECT(KivVersionInfo("", 0, fields, &fixedInfo) == KIV_OK && KivStringListCount(fields) == KIV_VERSION_FIELDS);
  for (size_t i = 0; i < KIV_VERSION_FIELDS; ++i) {
    EXPECT(Gave(KivStringListItem(fields, i, buffer, sizeof buffer), none));
  }
  for (size_t i = 0; i < 13; ++i) {
    EXPECT(fixedInfo.numbers[i] == 0);
  }
  GIVES("CompanyName", KivVersionFieldName, KIV_VERSION_COMPANY_NAME);
  GIVES("InternalName", KivVersionFieldName, KIV_VERSION_INTERNAL_NAME);
  GIVES("Comments", KivVersionFieldName, KIV_VERSION_COMMENTS);
  GIVES("MajorVersion", KivVersionFieldName, KIV_VERSION_MAJOR_VERSION);
  GIVES("MinorVersion", KivVersionFieldName, KIV_VERSION_MINOR_VERSION);
  GIVES("Release", KivVersionFieldName, KIV_VERSION_RELEASE);
  GIVES("Build", KivVersionFieldName, KIV_VERSION_BUILD);
  EXPECT(KivVersionFieldName(-1, buffer, sizeof buffer) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivVersionFieldName(14, buffer, sizeof buffer) == -KIV_ERROR_ARGUMENT);
  EXPECT(LastMessageIs("KivVersionFieldName: field 14 nu exista"));
  KivStringListFree(fields);
}
