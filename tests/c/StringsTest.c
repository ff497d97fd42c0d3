/* Lists of texts, splitting, rounding, variants, and questions to the system. */
#include "Expect.h"

static void TestLists(void) {
  KivStringList* list = KivStringListNew();
  EXPECT(KivStringListAdd(list, "first", KIV_ZERO_ENDED) == KIV_OK && KivStringListCount(list) == 1);
  EXPECT(KivSplitTextOnSeparator("a,b,,c", KIV_ZERO_ENDED, ",", 1, list) == KIV_OK && KivStringListCount(list) == 4);
  EXPECT(Gave(KivStringListItem(list, 3, buffer, sizeof buffer), "c"));
  EXPECT(KivStringListItem(list, 4, buffer, sizeof buffer) == -KIV_ERROR_LIST_INDEX);
  EXPECT(LastMessageIs("KivStringListItem: indicele 4 nu exista intr-o lista de 4"));
  EXPECT(KivExplode(",", 1, "a,b,,c", 6, 2, list) == KIV_OK && KivStringListCount(list) == 2);
  EXPECT(Gave(KivStringListItem(list, 1, buffer, sizeof buffer), "b,,c"));
  EXPECT(KivExplode(",", 1, NULL, 1, 2, list) == -KIV_ERROR_ARGUMENT && KivStringListCount(list) == 2);
  EXPECT(KivStringListClear(list) == KIV_OK && KivStringListCount(list) == 0);
  KivStringListFree(list);
  KivStringListFree(NULL);
}

static void TestVariants(void) {
  static const struct {
    KivVariant value;
    double days;
    int32_t integer;
  } cases[] = {
      {{KIV_VARIANT_NULL, 5, 5, "5", 1}, 77, 78},
      {{KIV_VARIANT_BOOLEAN, 5, 0, NULL, 0}, -1, -1},
      {{KIV_VARIANT_INTEGER, 12, 0, NULL, 0}, 12, 12},
      {{KIV_VARIANT_DOUBLE, 0, 2.5, NULL, 0}, 2.5, 2},
      {{KIV_VARIANT_CURRENCY, 35000, 0, NULL, 0}, 3.5, 4},
      {{KIV_VARIANT_DATE_TIME, 0, 45356, NULL, 0}, 45356, 45356},
      {{KIV_VARIANT_TEXT, 0, 0, "1.5", KIV_ZERO_ENDED}, 1.5, 2},
      {{KIV_VARIANT_TEXT, 0, 0, "15", 1}, 1, 1},
  };
  const KivVariant unknown = {99, 0, 0, NULL, 0};
  const KivVariant null = {KIV_VARIANT_TEXT, 0, 0, NULL, 1};
  double days = 5;
  int32_t integer = 5;
  for (size_t i = 0; i < sizeof cases / sizeof *cases; ++i) {
    EXPECT(KivVarToDateDef(&cases[i].value, 77, &days) == KIV_OK && days == cases[i].days);
    EXPECT(KivVarToIntDef(&cases[i].value, 78, &integer) == KIV_OK && integer == cases[i].integer);
  }
  EXPECT(KivVarToIntDef(&unknown, 0, &integer) == -KIV_ERROR_ARGUMENT);
  EXPECT(LastMessageIs("KivVarToIntDef: value.kind 99 nu exista"));
  EXPECT(KivVarToDateDef(&null, 0, &days) == -KIV_ERROR_ARGUMENT);
  EXPECT(LastMessageIs("KivVarToDateDef: value.text: pointer nul"));
}

void StringsTest(void) {
  double number = 77;
  TestLists();
  TestVariants();
  GIVES("130", KivStringHash, "A", 1);
  GIVES("c:\\a", KivRemoveDualSlshPath, "c:\\\\a", KIV_ZERO_ENDED);
  EXPECT(KivSmartRound(2.5, &number) == KIV_OK && number == 3);
  EXPECT(KivSmartRoundTo(0.125, -2, &number) == KIV_OK && number == 0.13);
  EXPECT(KivSmartRoundTo(1, 128, &number) == -KIV_ERROR_ARGUMENT && number == 0.13);
  EXPECT(LastMessageIs("KivSmartRoundTo: digit 128 nu este in -128..127"));
  EXPECT(KivSmartRoundTo(1, -129, &number) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivSmartRoundTo(1, 127, &number) == KIV_OK && number == 0);
  EXPECT(KivSmartRoundTo(1, -128, &number) == -KIV_ERROR_GENERAL);
  EXPECT(KivSmartRound(1e300, &number) == -KIV_ERROR_GENERAL && number == 0);
  EXPECT(KivTrimestruLuna(12) == 4 && KivTrimestruLuna(13) == -1 && KivMaxInt(2, 3) == 3 && KivMinInt(2, 3) == 2);
  EXPECT(KivLogOnUserName(buffer, sizeof buffer) > 0 && KivEsteWindowsVista() >= 0);
  EXPECT(KivCopiazaTextInClipboard("text", 4) == KIV_OK);
}
