/* Shaping, transliteration, code pages and the M1 encoding. */
#include "Expect.h"

static void TestShaping(void) {
  const KivGuid left = {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
  KivGuid right = left;
  GIVES("'l''an'", KivTextIntreGhilimele, '\'', "l'an", KIV_ZERO_ENDED);
  GIVES("\"a\"", KivTextInGhilimele, "a", 1);
  GIVES("|a|", KivQuoteText, "a", 1, '|');
  GIVES("ab\"c", KivTextDinGhilimele, "\"ab\"\"c\"", KIV_ZERO_ENDED);
  GIVES("007", KivPadLeft, "7", 1, 3, '0');
  GIVES("7..", KivPadRight, "7", 1, 3, '.');
  GIVES("abf", KivTextDeLatimeFixa, "abcdef", 6, 3, NULL, 0);
  GIVES("ab--", KivTextDeLatimeFixa, "ab", 2, 4, "-", 1);
  GIVES("15", KivStripDot, "-1.5", 4);
  GIVES("1250", KivStripDotExtract2CifreDupaVirgula, "12,5", 4);
  GIVES("123.4", KivPunePuncteInSimbol, "1234", 4, 3);
  EXPECT(KivRespectaMasca("12-AB", 5, "##-??", 5) == 1 && KivRespectaMasca("1x", 2, "##", 2) == 0);
  GIVES("Popescu", KivNumeDinNumeSiPrenume, "Popescu Ion", KIV_ZERO_ENDED);
  GIVES("Ion", KivPrenumeDinNumeSiPrenume, "Popescu Ion", KIV_ZERO_ENDED);
  GIVES("0722.123.456", KivScrieFrumosNrTelefon, "0722 123456", KIV_ZERO_ENDED);
  for (size_t i = 0; i < sizeof left; ++i) {
    EXPECT(KivGuidEgal(&left, &right) == 1);
    ((char*)&right)[i] ^= 1;
    EXPECT(KivGuidEgal(&left, &right) == 0);
    right = left;
  }
}

void TextTest(void) {
  static const char* const pairs[] = {"suma", "12,50"};
  static const size_t lengths[] = {4, 2};
  static const uint16_t letters[] = {0x163, 0x61, 0};
  uint16_t wide[3] = {7, 7, 7};
  char encoded[16];
  TestShaping();
  GIVES("Cet", KivRoToEn, "Ce?", 3);
  GIVES("Rom\xE2nia", KivRoText, "Rom@hnia", KIV_ZERO_ENDED);
  GIVES("1.50", KivCharReplace, "1,50", 4, ',', '.');
  GIVES("12,50 lei", KivMaskReplace, "%Suma% lei", KIV_ZERO_ENDED, pairs, NULL, 2);
  EXPECT(KivMaskReplace("%Suma%", 6, pairs, NULL, 1, buffer, sizeof buffer) == -KIV_ERROR_GENERAL);
  GIVES("12 lei", KivMaskReplace, "%Suma% lei", KIV_ZERO_ENDED, pairs, lengths, 2);
  EXPECT(KivStringToWideString("\xFE"
                               "a",
                               2, 1250, wide, 3) == 2 &&
         memcmp(wide, letters, sizeof letters) == 0);
  GIVES(
      "\xFE"
      "a",
      KivWideStringToString, letters, 2, 1250);
  GIVES(
      "\xFE"
      "a",
      KivWideStringToString, letters, KIV_ZERO_ENDED, 1250);
  GIVES("", KivUpCaseAsCodePage, "a", 1, 1250);
  EXPECT(KivStringToWideString("\xFE\xAA!", 3, 1250, wide, 2) == 3 && wide[0] == 0x163 && wide[1] == 0);
  EXPECT(KivIsWinOsUnicode() == 1 && KivPage1250Ok() == 1 && KivPage1250Replace() == 1250);
  GIVES("\x05", KivDecodeM1String, "0100", 4);
  EXPECT(KivEncodeM1String("abc", 3, encoded, sizeof encoded) == 12);
  GIVES("abc", KivDecodeM1String, encoded, 12);
}
