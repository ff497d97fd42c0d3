#include "Expect.h"

static KivDataset* MakePartners(void) {
  static const char* const kNames[] = {"Zorile", "alfa", "Sapte", "beta"};
  KivSchema* schema = KivSchemaNew();
  KivDataset* partners = NULL;
  EXPECT(KivSchemaAddField(schema, "id", 2, KIV_FIELD_INT32, 0, KIV_FLAG_KEY) == KIV_OK);
  EXPECT(KivSchemaAddField(schema, "nume", 4, KIV_FIELD_TEXT, 10, 0) == KIV_OK);
  EXPECT(KivDatasetNew("parteneri", KIV_ZERO_ENDED, schema, &partners) == KIV_OK);
  KivSchemaFree(schema);
  for (int row = 0; row < 4; ++row) {
    EXPECT(KivDatasetInsert(partners) == KIV_OK);
    EXPECT(KivDatasetSetInt64(partners, KIV_NO_ROW, 0, 10 + row) == KIV_OK);
    EXPECT(KivDatasetSetText(partners, KIV_NO_ROW, 1, kNames[row], KIV_ZERO_ENDED) == KIV_OK);
    EXPECT(KivDatasetPost(partners, NULL) == KIV_OK);
  }
  return partners;
}

static KivFieldValue TextValue(const char* text) {
  KivFieldValue value = {0};
  value.kind = KIV_VALUE_TEXT;
  value.units = text;
  value.size = KIV_ZERO_ENDED;
  return value;
}

void DatasetCursorTest(void) {
  KivDataset* partners = MakePartners();
  KivDataset* snapshot = NULL;
  KivCursor* cursor = NULL;
  KivCursor* clone = NULL;
  const size_t name = 1;
  const KivFieldValue beta = TextValue("beta");
  const KivFieldValue s = TextValue("s");
  const KivFieldValue nobody = TextValue("nimeni");
  uint32_t row = 77;
  EXPECT(KivDatasetTakeSnapshot(partners, &snapshot) == KIV_OK);
  EXPECT(KivCursorNew(snapshot, &cursor) == -KIV_ERROR_ARGUMENT && cursor == NULL);
  KivDatasetFree(snapshot);

  EXPECT(KivCursorNew(partners, &cursor) == KIV_OK);
  EXPECT(KivCursorAtStart(cursor) == 1 && KivCursorAtEnd(cursor) == 0);
  EXPECT(KivCursorRow(cursor, &row) == 0 && row == 77);
  EXPECT(KivCursorPosition(cursor) == -KIV_ERROR_GENERAL);
  EXPECT(KivCursorOrderBy(cursor, "cine", KIV_ZERO_ENDED) == -KIV_ERROR_GENERAL);
  EXPECT(LastMessageIs("Dataset \"parteneri\": ordinea \"cine\": \"cine\" nu se intelege"));
  EXPECT(KivCursorOrderBy(cursor, "NUME", 4) == KIV_OK);
  GIVES("nume", KivCursorOrder, cursor);
  EXPECT(KivCursorFirst(cursor) == 1 && KivCursorRow(cursor, &row) == 1 && row == 1);
  EXPECT(KivCursorPrior(cursor) == 0 && KivCursorAtStart(cursor) == 1 && KivCursorNext(cursor) == 1);
  EXPECT(KivCursorLast(cursor) == 1 && KivCursorRow(cursor, &row) == 1 && row == 0);
  EXPECT(KivCursorNext(cursor) == 0 && KivCursorAtEnd(cursor) == 1);

  EXPECT(KivCursorLocate(cursor, &name, &beta, 1) == 1 && KivCursorPosition(cursor) == 1);
  EXPECT(KivCursorLocate(cursor, &name, &nobody, 1) == 0 && KivCursorPosition(cursor) == 1);
  EXPECT(KivCursorClone(cursor, &clone) == KIV_OK);
  EXPECT(KivCursorLocateNearest(cursor, &s, 1) == 1 && KivCursorRow(cursor, &row) == 1 && row == 2);
  EXPECT(KivCursorRow(clone, &row) == 1 && row == 3);

  EXPECT(KivCursorSetRange(cursor, &beta, 1, NULL, 0) == KIV_OK && KivCursorCount(cursor) == 3);
  EXPECT(KivCursorGoToRow(cursor, 1) == 0 && KivCursorGoToRow(cursor, 3) == 1);
  EXPECT(KivCursorFilter(cursor, "id < 13", KIV_ZERO_ENDED) == KIV_OK && KivCursorCount(cursor) == 2);
  EXPECT(KivCursorFilter(cursor, "id <", KIV_ZERO_ENDED) < 0 && KivCursorCount(cursor) == 2);
  EXPECT(KivCursorFilterWith(cursor, "nume = :cine", KIV_ZERO_ENDED, "cine", 4, &beta, 1) == KIV_OK);
  EXPECT(KivCursorCount(cursor) == 1 && KivCursorFilterWith(cursor, "nume = :cine", 12, "cine", 4, NULL, 0) < 0);
  EXPECT(LastMessageIs("KivCursorFilterWith: values: pointer nul"));
  EXPECT(KivCursorFilter(cursor, "", 0) == KIV_OK && KivCursorCount(cursor) == 3);
  EXPECT(KivCursorGoTo(cursor, 3) == -KIV_ERROR_LIST_INDEX && KivCursorGoTo(cursor, 1) == KIV_OK);
  EXPECT(KivDatasetDelete(partners, 2) == KIV_OK && KivCursorRow(cursor, &row) == 1 && row == 0);

  KivDatasetFree(partners);
  EXPECT(KivCursorFirst(cursor) == -KIV_ERROR_GENERAL && KivCursorNext(clone) == -KIV_ERROR_GENERAL);
  EXPECT(LastMessageIs("Cursor: setul de date nu mai exista"));
  KivCursorFree(cursor);
  KivCursorFree(clone);
  KivCursorFree(NULL);
}
