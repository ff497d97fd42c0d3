#include <string.h>

#include "Expect.h"

/* Columns that are worked out, of a dataset of names and sums and of one that has towns by name. */
static void TestColumns(KivDataset* lines) {
  KivSchema* schema = KivSchemaNew();
  KivDataset* towns = NULL;
  KivFilter* filter = NULL;
  KivFieldValue sum;
  char text[20];
  int64_t amount = 0;
  int32_t type = 0;
  size_t field = 0;
  EXPECT(KivSchemaAddField(schema, "cod", KIV_ZERO_ENDED, KIV_FIELD_TEXT, 20, KIV_FLAG_KEY) == KIV_OK);
  EXPECT(KivSchemaAddField(schema, "oras", KIV_ZERO_ENDED, KIV_FIELD_TEXT, 20, 0) == KIV_OK);
  EXPECT(KivDatasetNew("orase", KIV_ZERO_ENDED, schema, &towns) == KIV_OK);
  EXPECT(KivDatasetInsert(towns) == KIV_OK);
  EXPECT(KivDatasetSetText(towns, KIV_NO_ROW, 0, "Beta", 4) == KIV_OK);
  EXPECT(KivDatasetSetText(towns, KIV_NO_ROW, 1, "Cluj", 4) == KIV_OK && KivDatasetPost(towns, NULL) == KIV_OK);
  EXPECT(KivDatasetCalculate(lines, "tva", 3, "suma * 0.21", KIV_ZERO_ENDED, &field) == KIV_OK && field == 2);
  EXPECT(KivDatasetLookup(lines, 0, towns, 0, 1, NULL, 0, &field) == KIV_OK && field == 3);
  EXPECT(KivDatasetLookup(lines, 0, towns, 0, 1, "loc", KIV_ZERO_ENDED, &field) == KIV_OK && field == 4);
  EXPECT(KivDatasetField(lines, "LOC", 3) == 4 && KivDatasetFieldCount(lines) == 2);
  EXPECT(KivDatasetFieldName(lines, 3, text, sizeof text) == 4 && strcmp(text, "oras") == 0);
  EXPECT(KivDatasetFieldInfo(lines, 2, &type, NULL, NULL) == KIV_OK && type == KIV_FIELD_CURRENCY);
  EXPECT(KivDatasetFieldInfo(lines, 5, &type, NULL, NULL) == -KIV_ERROR_LIST_INDEX);
  EXPECT(KivDatasetGetCurrency(lines, 1, 2, &amount) == 1 && amount == 42000);
  EXPECT(KivDatasetGetText(lines, 1, 3, text, sizeof text) == 4 && strcmp(text, "Cluj") == 0);
  EXPECT(KivDatasetValueText(lines, 1, 2, text, sizeof text) == 6 && strcmp(text, "4.2000") == 0);
  EXPECT(KivDatasetIsNull(lines, 0, 4) == 1);
  EXPECT(KivFilterNew(lines, "loc = 'Cluj'", KIV_ZERO_ENDED, NULL, 0, NULL, 0, &filter) == KIV_OK);
  EXPECT(KivFilterSum(filter, 2, &sum) == 1 && sum.kind == KIV_VALUE_CURRENCY && sum.integer == 42000);
  KivFilterFree(filter);
  EXPECT(KivDatasetSetCurrency(lines, 1, 2, 1) == KIV_OK && KivDatasetPost(lines, NULL) == -KIV_ERROR_GENERAL);
  EXPECT(LastMessageIs("Dataset \"linii\": campul \"tva\" este calculat si nu se modifica"));
  EXPECT(KivDatasetCancel(lines) == KIV_OK);
  EXPECT(KivDatasetCalculate(lines, "x", 1, "suma +", KIV_ZERO_ENDED, &field) == -KIV_ERROR_FILTER);
  EXPECT(KivDatasetLookup(lines, 1, towns, 0, 1, "x", 1, &field) == -KIV_ERROR_GENERAL && field == 4);
  KivDatasetFree(towns);
  EXPECT(KivDatasetGetText(lines, 1, 3, text, sizeof text) == -KIV_ERROR_FILTER);
  EXPECT(LastMessageIs("Filtru: setul de date in care se cauta nu mai exista: \"oras\", randul 1"));
  KivSchemaFree(schema);
}

void DatasetFilterTest(void) {
  KivSchema* schema = KivSchemaNew();
  KivDataset* lines = NULL;
  KivDataset* image = NULL;
  KivFilter* filter = NULL;
  KivExpression* expression = NULL;
  KivFieldValue value;
  KivFieldValue limit;
  uint32_t rows[2] = {77, 77};
  uint64_t offset = 0;
  int32_t chunk = 0;
  int i;
  memset(&value, 0, sizeof value);
  memset(&limit, 0, sizeof limit);
  limit.kind = KIV_VALUE_CURRENCY;
  limit.integer = 200000;
  EXPECT(KivSchemaAddField(schema, "nume", KIV_ZERO_ENDED, KIV_FIELD_TEXT, 20, 0) == KIV_OK);
  EXPECT(KivSchemaAddField(schema, "suma", KIV_ZERO_ENDED, KIV_FIELD_CURRENCY, 0, 0) == KIV_OK);
  EXPECT(KivDatasetNew("linii", KIV_ZERO_ENDED, schema, &lines) == KIV_OK);
  for (i = 0; i < 4; ++i) {
    EXPECT(KivDatasetInsert(lines) == KIV_OK);
    EXPECT(KivDatasetSetText(lines, KIV_NO_ROW, 0, i % 2 == 0 ? "Alfa" : "Beta", KIV_ZERO_ENDED) == KIV_OK);
    EXPECT(i == 3 || KivDatasetSetCurrency(lines, KIV_NO_ROW, 1, (int64_t)100000 * (i + 1)) == KIV_OK);
    EXPECT(KivDatasetPost(lines, NULL) == KIV_OK);
  }

  EXPECT(KivFilterNew(lines, "suma >= :prag", KIV_ZERO_ENDED, " PRAG ", KIV_ZERO_ENDED, &limit, 1, &filter) == KIV_OK);
  EXPECT(KivFilterTest(filter, 0) == 0 && KivFilterTest(filter, 1) == 1 && KivFilterTest(filter, 3) == 0);
  EXPECT(KivFilterTest(filter, 4) == -KIV_ERROR_GENERAL);
  EXPECT(KivFilterCount(filter) == 2);
  EXPECT(KivFilterSelect(filter, rows, 1) == 2 && rows[0] == 1 && rows[1] == 77);
  EXPECT(KivFilterSelect(filter, rows, 2) == 2 && rows[1] == 2);
  EXPECT(KivFilterSum(filter, 1, &value) == 1 && value.kind == KIV_VALUE_CURRENCY && value.integer == 500000);
  EXPECT(KivFilterSum(filter, 0, &value) == -KIV_ERROR_CAST &&
         KivFilterSum(filter, 2, &value) == -KIV_ERROR_LIST_INDEX);
  KivFilterFree(filter);
  EXPECT(KivFilterNew(lines, "suma < 0", 8, NULL, 0, NULL, 0, &filter) == KIV_OK);
  EXPECT(KivFilterSum(filter, 1, &value) == 0 && KivFilterCount(filter) == 0);
  KivFilterFree(filter);
  KivFilterFree(NULL);
  EXPECT(KivFilterNew(lines, "suma / 0 > 1", KIV_ZERO_ENDED, NULL, 0, NULL, 0, &filter) == KIV_OK);
  EXPECT(KivFilterCount(filter) == -KIV_ERROR_FILTER);
  EXPECT(LastMessageIs("Filtru: impartire la zero: \"suma / 0\", randul 0"));
  KivFilterFree(filter);

  filter = NULL;
  EXPECT(KivFilterNew(lines, "suma > ", KIV_ZERO_ENDED, NULL, 0, NULL, 0, &filter) == -KIV_ERROR_FILTER && !filter);
  EXPECT(LastMessageIs("Filtru: expresia se incheie prea devreme (pozitia 8)"));
  EXPECT(KivLastErrorPlace(&chunk, &offset) == 1 && chunk == -1 && offset == 7);
  EXPECT(KivFilterNew(lines, "suma > 0", 8, "a,b", 3, &limit, 1, &filter) == -KIV_ERROR_ARGUMENT);
  EXPECT(LastMessageIs("KivFilterNew: names: un parametru nu are valoare"));
  EXPECT(KivFilterNew(lines, "suma > 0", 8, ",b", 2, &limit, 1, &filter) == -KIV_ERROR_ARGUMENT);
  EXPECT(LastMessageIs("KivFilterNew: names: lipseste numele unui parametru"));
  EXPECT(KivLastErrorPlace(&chunk, &offset) == 0);

  EXPECT(KivDatasetTakeSnapshot(lines, &image) == KIV_OK);
  EXPECT(KivExpressionNew(image, "Upper(nume) || :s", KIV_ZERO_ENDED, "s", 1, &limit, 1, &expression) ==
         -KIV_ERROR_FILTER);
  EXPECT(KivExpressionNew(image, "Coalesce(suma, 0) + :prag", KIV_ZERO_ENDED, "prag", 4, &limit, 1, &expression) ==
         KIV_OK);
  EXPECT(KivExpressionType(expression) == KIV_FIELD_CURRENCY);
  EXPECT(KivExpressionEvaluate(expression, 3, &value) == 1 && value.integer == 200000);
  KivExpressionFree(expression);
  EXPECT(KivExpressionNew(image, "Upper(nume)", KIV_ZERO_ENDED, NULL, 0, NULL, 0, &expression) == KIV_OK);
  EXPECT(KivExpressionType(expression) == KIV_FIELD_MEMO);
  EXPECT(KivExpressionEvaluate(expression, 1, &value) == 1 && value.kind == KIV_VALUE_TEXT && value.size == 4 &&
         memcmp(value.units, "BETA", 4) == 0);
  KivExpressionFree(expression);
  EXPECT(KivExpressionNew(image, "suma", KIV_ZERO_ENDED, NULL, 0, NULL, 0, &expression) == KIV_OK);
  EXPECT(KivExpressionEvaluate(expression, 3, &value) == 0);
  KivExpressionFree(expression);
  KivExpressionFree(NULL);
  KivDatasetFree(image);
  TestColumns(lines);
  KivDatasetFree(lines);
  KivSchemaFree(schema);
}
