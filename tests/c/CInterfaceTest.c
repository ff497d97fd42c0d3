/* The C interface as a C program sees it: a C11 compiler, the buffer rules, the error report. */
#include <stdio.h>
#include <string.h>

#include "kivtools/kiv.h"

static int failures = 0;

#define EXPECT(condition)                                                   \
  do {                                                                      \
    if (!(condition)) {                                                     \
      printf("%s:%d: does not hold: %s\n", __FILE__, __LINE__, #condition); \
      ++failures;                                                           \
    }                                                                       \
  } while (0)

static char buffer[200];

/* The text just written, with the length that the call returned. */
static int Gave(KivLength length, const char* expected) {
  const int equal = length == (KivLength)strlen(expected) && strcmp(buffer, expected) == 0;
  if (!equal) {
    printf("gave \"%s\" (%ld) instead of \"%s\"\n", buffer, (long)length, expected);
  }
  return equal;
}

static int LastMessageIs(const char* expected) {
  char message[200];
  KivLastErrorMessage(message, sizeof message);
  return strcmp(message, expected) == 0;
}

static void TestBufferRules(void) {
  char small[4] = "zzz";
  EXPECT(KivInLitere(21, small, sizeof small) == 13);
  EXPECT(strcmp(small, "DOU") == 0);
  EXPECT(KivInLitere(21, NULL, 0) == 13);
  EXPECT(KivInLitere(21, small, 0) == 13 && strcmp(small, "DOU") == 0);
  EXPECT(KivInLitere(21, NULL, 5) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivLastError() == KIV_ERROR_ARGUMENT && LastMessageIs("buffer: pointer nul"));
  EXPECT(KivPadLeft("a\0b", 3, 4, '-', buffer, sizeof buffer) == 4 && memcmp(buffer, "-a\0b", 5) == 0);
  EXPECT(KivPadLeft(NULL, 0, 2, '-', buffer, sizeof buffer) == 2 && strcmp(buffer, "--") == 0);
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
  EXPECT(KivRoStrToCurrency("1", 1, NULL) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivRoCodeToDate("31.02.2024", KIV_ZERO_ENDED, &days) == -KIV_ERROR_DATE && days == 77);
  EXPECT(KivUtf8ToText("\xff", 1, buffer, sizeof buffer) == -KIV_ERROR_CONVERSION);
  EXPECT(KivDateToRoText_WithCode(1, 0, 0, 4, 0, buffer, sizeof buffer) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivTextDeLatimeFixa("a", 1, 0, NULL, 0, buffer, sizeof buffer) == -KIV_ERROR_GENERAL);
  EXPECT(KivInLitere(5, buffer, sizeof buffer) == 5 && KivLastError() == KIV_ERROR_GENERAL);
}

static void TestOperations(void) {
  const KivGuid left = {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
  KivGuid right = left;
  KivDateParts parts;
  int64_t amount = 0;
  double days = 0;

  EXPECT(Gave(KivInLitereCurrency(12345600, buffer, sizeof buffer),
              "UNAMIEDOUASUTETREIZECISIPATRU LEI SI CINCIZECISISASE BANI"));
  EXPECT(Gave(KivInLitereMF(10500, buffer, sizeof buffer), "UNLEU,05BANI"));
  EXPECT(Gave(KivCurrencyToRoStr(12345678900, 2, buffer, sizeof buffer), "1.234.567, 89"));
  EXPECT(Gave(KivCurrencyToRoStrFaraSpatiu(12345678900, 2, buffer, sizeof buffer), "1.234.567,89"));
  EXPECT(Gave(KivCurrencyToRoStrRON(150000000, 0, buffer, sizeof buffer), "1, 50"));
  EXPECT(Gave(KivScrieFoarteFrumos(123456, 22, buffer, sizeof buffer), "1.234,56"));
  EXPECT(KivRoStrToCurrency("-1 234,5", KIV_ZERO_ENDED, &amount) == KIV_OK && amount == -12345000);

  EXPECT(KivEncodeDate(2024, 3, 5, 14, 7, 9, 0, &days) == KIV_OK);
  EXPECT(KivDecodeDate(days, &parts) == KIV_OK && parts.month == 3 && parts.second == 9 && parts.dayOfWeek == 3);
  EXPECT(Gave(KivDateToRoText(days, buffer, sizeof buffer), "5 martie 2024"));
  EXPECT(Gave(KivDateToRoTextScurtCuAnPlusOra(days, buffer, sizeof buffer), "05/03/24 14:07:09"));
  EXPECT(Gave(KivNumeZiDinSaptamana(days, buffer, sizeof buffer), "Marti"));
  EXPECT(KivRoCodeToDate("05.03.2024", KIV_ZERO_ENDED, &days) == KIV_OK && days == 45356);

  EXPECT(Gave(KivNotaToStr(950, 3, buffer, sizeof buffer), "(NOU\xC3, 50%)"));
  EXPECT(Gave(KivNotaToTextLung(705, buffer, sizeof buffer),
              "\xAA"
              "APTE, ZEROCINCI"));
  EXPECT(Gave(KivNotaToTextScurt(705, buffer, sizeof buffer),
              "\xAA"
              "APTE, 05"));
  EXPECT(KivSetShortDateFormat("dd.MM.yyyy", KIV_ZERO_ENDED) == KIV_OK);
  EXPECT(Gave(KivDataNasteriiDinCNP("1800101221144", KIV_ZERO_ENDED, buffer, sizeof buffer), "1 Ianuarie 1980"));
  EXPECT(KivValideazaIBAN("ro49 aaaa 1b31 0075 9384 0000", KIV_ZERO_ENDED) == 1);
  EXPECT(KivTestCodFiscal("RO12345674", KIV_ZERO_ENDED) == 0);
  EXPECT(KivValideazaSIRUTA("17A132", 6) == -KIV_ERROR_CONVERSION && LastMessageIs("\"A\" nu este un numar intreg"));

  EXPECT(Gave(KivTextIntreGhilimele('\'', "l'an", KIV_ZERO_ENDED, buffer, sizeof buffer), "'l''an'"));
  EXPECT(Gave(KivTextDeLatimeFixa("abcdef", 6, 3, NULL, 0, buffer, sizeof buffer), "abf"));
  EXPECT(Gave(KivPunePuncteInSimbol("1234", 4, 3, buffer, sizeof buffer), "123.4"));
  EXPECT(Gave(KivScrieFrumosNrTelefon("0722 123456", KIV_ZERO_ENDED, buffer, sizeof buffer), "0722.123.456"));
  EXPECT(KivRespectaMasca("12-AB", 5, "##-??", 5) == 1 && KivRespectaMasca("1x", 2, "##", 2) == 0);
  EXPECT(KivGuidEgal(&left, &right) == 1);
  right.data4[7] = 0;
  EXPECT(KivGuidEgal(&left, &right) == 0);

  EXPECT(Gave(KivTextToUtf8("\xAA", 1, 1, buffer, sizeof buffer), "\xC8\x98"));
  EXPECT(Gave(KivUtf8ToText("\xC8\x98", 2, buffer, sizeof buffer), "\xAA"));
}

static int32_t EndAtTwo(void* context, int32_t key, void* payload) {
  *(int32_t*)context = key;
  (void)payload;
  return key == 2 ? 77 : 0;
}

static void TestAvlIndex(void) {
  static const char zeros[8] = {0};
  KivAVLIndex* index = NULL;
  KivAVLNode root;
  KivAVLNode child;
  void* payload = &root;
  int32_t number = 0;
  KivSetAvlMemory(5);
  EXPECT(KivAVLIndexCreate(-1, 0, &index) == -KIV_ERROR_GENERAL && index == NULL);
  EXPECT(KivAVLIndexCreate(8, 0, &index) == KIV_OK);
  EXPECT(KivAVLIndexFind(index, 1, 0, &payload) == KIV_OK && payload == NULL);
  EXPECT(KivAVLIndexRoot(index, &root) == 0);
  for (int32_t key = 1; key <= 3; ++key) {
    EXPECT(KivAVLIndexFind(index, key, 1, &payload) == KIV_OK && memcmp(payload, zeros, 8) == 0);
  }
  EXPECT(KivAVLIndexRoot(index, &root) == 1 && root.key == 2 && root.balance == 0);
  EXPECT(KivAVLNodeLeft(&root, &child) == 1 && child.key == 1 && KivAVLNodeLeft(&child, &child) == 0);
  EXPECT(KivAVLNodeRight(&root, &child) == 1 && child.key == 3 && child.payload == payload);
  EXPECT(KivAVLIndexHeight(index, &number) == KIV_OK && number == 2);
  EXPECT(KivAVLIndexForEachInOrder(index, EndAtTwo, &number) == 77 && number == 2);
  EXPECT(KivAVLIndexForEachPreOrder(index, NULL, NULL) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivAVLIndexFind(NULL, 1, 1, &payload) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivAvlMemory() == 5);
  KivSetAvlMemory(0);
  KivAVLIndexDestroy(index);
  KivAVLIndexDestroy(NULL);
}

static void TestLifetimeTracker(void) {
  EXPECT(KivDoNewInstance(buffer, "Tampon", KIV_ZERO_ENDED) == 1 && KivIsValid(buffer) == 1);
  EXPECT(KivLockObjectDestruction(buffer) == KIV_OK && KivUnLockObjectDestruction(buffer) == KIV_OK);
  EXPECT(KivIsValidOrBust(buffer) == 1 && KivDoFreeInstance(buffer) == 1 && KivIsValid(buffer) == 0);
  EXPECT(KivRecordCaller(buffer, "x.c:1", KIV_ZERO_ENDED) == KIV_OK);
  EXPECT(KivDoFreeInstance(buffer) == -KIV_ERROR_GENERAL);
  EXPECT(LastMessageIs("Dai FreeInstance de 2 ori! Apelul anterior a venit de la adresa x.c:1"));
}

static void TestListsAndVersions(void) {
  const KivVariant text = {KIV_VARIANT_TEXT, 0, 0, "1.5", KIV_ZERO_ENDED};
  const KivVariant amount = {KIV_VARIANT_CURRENCY, 25000, 0, NULL, 0};
  const KivVariant unknown = {99, 0, 0, NULL, 0};
  KivStringList* list = KivStringListNew();
  KivFixedFileInfo fixedInfo;
  double number = 77;
  int32_t parts[4];

  EXPECT(KivStringListAdd(list, "first", KIV_ZERO_ENDED) == KIV_OK && KivStringListCount(list) == 1);
  EXPECT(KivSplitTextOnSeparator("a,b,,c", KIV_ZERO_ENDED, ",", 1, list) == KIV_OK && KivStringListCount(list) == 4);
  EXPECT(Gave(KivStringListItem(list, 3, buffer, sizeof buffer), "c"));
  EXPECT(KivStringListItem(list, 4, buffer, sizeof buffer) == -KIV_ERROR_LIST_INDEX);
  EXPECT(LastMessageIs("KivStringListItem: indicele 4 nu exista intr-o lista de 4"));
  EXPECT(KivExplode(",", 1, "a,b,,c", 6, 2, list) == KIV_OK && KivStringListCount(list) == 2);
  EXPECT(Gave(KivStringListItem(list, 1, buffer, sizeof buffer), "b,,c"));
  EXPECT(KivExplode(",", 1, NULL, 1, 2, list) == -KIV_ERROR_ARGUMENT && KivStringListCount(list) == 2);
  EXPECT(KivStringListCount(NULL) == -KIV_ERROR_ARGUMENT && KivStringListClear(NULL) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivStringListClear(list) == KIV_OK && KivStringListCount(list) == 0);

  EXPECT(Gave(KivStringHash("A", 1, buffer, sizeof buffer), "130"));
  EXPECT(Gave(KivRemoveDualSlshPath("c:\\\\a", KIV_ZERO_ENDED, buffer, sizeof buffer), "c:\\a"));
  EXPECT(KivSmartRound(2.5, &number) == KIV_OK && number == 3);
  EXPECT(KivSmartRoundTo(0.125, -2, &number) == KIV_OK && number == 0.13);
  EXPECT(KivSmartRoundTo(1, 128, &number) == -KIV_ERROR_ARGUMENT && number == 0.13);
  EXPECT(KivSmartRound(1e300, &number) == -KIV_ERROR_GENERAL && number == 0.13);
  EXPECT(KivTrimestruLuna(12) == 4 && KivTrimestruLuna(13) == -1 && KivMaxInt(2, 3) == 3 && KivMinInt(2, 3) == 2);
  EXPECT(KivVarToDateDef(&text, 0, &number) == KIV_OK && number == 1.5);
  EXPECT(KivVarToIntDef(&amount, 0, &parts[0]) == KIV_OK && parts[0] == 2);
  EXPECT(KivVarToIntDef(&unknown, 0, &parts[0]) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivLogOnUserName(buffer, sizeof buffer) > 0 && KivEsteWindowsVista() >= 0);
  EXPECT(KivCopiazaTextInClipboard("text", 4) == KIV_OK);

  EXPECT(KivAnalizeazaNrVersiune(&parts[0], &parts[1], &parts[2], &parts[3], "4.5x", 4) == 0);
  EXPECT(parts[0] == 4 && parts[1] == 5 && parts[2] == 0 && parts[3] == 0);
  EXPECT(KivNumarulDeVersiuneEsteValid("1.2.3.", KIV_ZERO_ENDED) == 1);
  EXPECT(KivCompareNrVersiune("1.10", 4, "1.9", 3, &parts[0]) == KIV_OK && parts[0] == 1);
  EXPECT(KivCompareNrVersiune("x", 1, "1.9", 3, &parts[0]) == -KIV_ERROR_GENERAL);
  EXPECT(LastMessageIs("x nu este un numar de versiune valid"));
  EXPECT(Gave(KivGetFileVersionKiv("", 0, buffer, sizeof buffer), "<info not available>"));
  EXPECT(KivNamedFileVersionInfo("", 0, buffer, sizeof buffer) == 83 && KivThisExeVersionInfo(NULL, 0) == 83);
  EXPECT(KivVersionInfo("", 0, list, &fixedInfo) == KIV_OK && KivStringListCount(list) == KIV_VERSION_FIELDS);
  EXPECT(fixedInfo.numbers[0] == 0);
  EXPECT(Gave(KivVersionFieldName(KIV_VERSION_INTERNAL_NAME, buffer, sizeof buffer), "InternalName"));
  EXPECT(Gave(KivVersionFieldName(KIV_VERSION_BUILD, buffer, sizeof buffer), "Build"));
  EXPECT(KivVersionFieldName(14, buffer, sizeof buffer) == -KIV_ERROR_ARGUMENT);
  KivStringListFree(list);
  KivStringListFree(NULL);
}

int main(void) {
  EXPECT(KivLastError() == KIV_OK);
  EXPECT(KivInitialize() == KIV_OK);
  TestBufferRules();
  TestErrorReport();
  TestAvlIndex();
  TestLifetimeTracker();
  TestOperations();
  TestListsAndVersions();
  EXPECT(KivFinalize() == KIV_OK);
  printf("%d failures\n", failures);
  return failures != 0;
}
