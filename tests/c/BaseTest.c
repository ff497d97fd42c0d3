#include "Expect.h"

static void TestBufferRules(void) {
  char small[4] = "zzz";
  EXPECT(KIV_ZERO_ENDED == SIZE_MAX);
  EXPECT(KivInLitere(21, small, sizeof small) == 13);
  EXPECT(strcmp(small, "DOU") == 0);
  EXPECT(KivInLitere(21, NULL, 0) == 13);
  EXPECT(KivInLitere(21, small, 0) == 13 && strcmp(small, "DOU") == 0);
  EXPECT(KivInLitere(1, small, 4) == 3 && strcmp(small, "UNU") == 0);
  EXPECT(KivInLitere(1, small, 3) == 3 && strcmp(small, "UN") == 0);
  EXPECT(KivInLitere(1, small, 1) == 3 && strcmp(small, "") == 0);
  EXPECT(KivInLitere(21, NULL, 5) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivLastError() == KIV_ERROR_ARGUMENT && LastMessageIs("KivInLitere: buffer: pointer nul"));
  EXPECT(KivPadLeft("a\0b", 3, 4, '-', buffer, sizeof buffer) == 4 && memcmp(buffer, "-a\0b", 5) == 0);
  GIVES("--", KivPadLeft, NULL, 0, 2, '-');
  EXPECT(KivPadLeft(NULL, KIV_ZERO_ENDED, 2, '-', buffer, sizeof buffer) == -KIV_ERROR_ARGUMENT);
}

static void TestErrorReport(void) {
  int64_t amount = 77;
  double days = 77;
  strcpy(buffer, "kept");
  EXPECT(KivInLitere(-5, buffer, sizeof buffer) == -KIV_ERROR_GENERAL && strcmp(buffer, "kept") == 0);
  EXPECT(LastMessageIs("Numarul -5 nu se afla in intervalul 0..999"));
  EXPECT(KivRoStrToCurrency("12a", KIV_ZERO_ENDED, &amount) == -KIV_ERROR_GENERAL && amount == 77);
  EXPECT(KivRoStrToCurrency("1000000000000000", KIV_ZERO_ENDED, &amount) == -KIV_ERROR_CONVERSION && amount == 77);
  EXPECT(KivRoCodeToDate("31.02.2024", KIV_ZERO_ENDED, &days) == -KIV_ERROR_DATE && days == 77);
  EXPECT(KivUtf8ToText("\xff", 1, buffer, sizeof buffer) == -KIV_ERROR_CONVERSION);
  EXPECT(KivTextDeLatimeFixa("a", 1, 0, NULL, 0, buffer, sizeof buffer) == -KIV_ERROR_GENERAL);
  EXPECT(KivInLitere(5, buffer, sizeof buffer) == 5 && KivLastError() == KIV_ERROR_GENERAL);
}

void BaseTest(void) {
  TestBufferRules();
  TestErrorReport();
  EXPECT(Gave(KivVersion(buffer, sizeof buffer), KIV_VERSION));
  GIVES("\xC8\x98", KivTextToUtf8, "\xAA", 1, 1);
  GIVES("\xC5\x9E", KivTextToUtf8, "\xAA", 1, 0);
  GIVES("\xAA", KivUtf8ToText, "\xC8\x98", 2);
}
