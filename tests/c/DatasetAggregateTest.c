#include <string.h>

#include "Expect.h"

void DatasetAggregateTest(void) {
  KivSchema* schema = KivSchemaNew();
  KivDataset* lines = NULL;
  KivDataset* image = NULL;
  KivAggregate* sum = NULL;
  KivAggregate* names = NULL;
  KivFieldValue value;
  KivFieldValue key;
  uint64_t offset = 0;
  int i;
  memset(&value, 0, sizeof value);
  memset(&key, 0, sizeof key);
  key.kind = KIV_VALUE_TEXT;
  key.units = "Alfa";
  key.size = KIV_ZERO_ENDED;
  EXPECT(KivSchemaAddField(schema, "nume", KIV_ZERO_ENDED, KIV_FIELD_TEXT, 20, 0) == KIV_OK);
  EXPECT(KivSchemaAddField(schema, "suma", KIV_ZERO_ENDED, KIV_FIELD_CURRENCY, 0, 0) == KIV_OK);
  EXPECT(KivDatasetNew("linii", KIV_ZERO_ENDED, schema, &lines) == KIV_OK);
  EXPECT(KivAggregateNew(lines, "sum(suma)", KIV_ZERO_ENDED, "nume", 4, &sum) == KIV_OK);
  EXPECT(KivAggregateNew(lines, "max(nume)", 9, NULL, 0, &names) == KIV_OK);
  EXPECT(KivAggregateGet(names, NULL, 0, &value) == 0 && KivAggregateGroupCount(sum) == 0);
  for (i = 0; i < 3; ++i) {
    EXPECT(KivDatasetInsert(lines) == KIV_OK);
    EXPECT(KivDatasetSetText(lines, KIV_NO_ROW, 0, i == 1 ? "Beta" : "Alfa", KIV_ZERO_ENDED) == KIV_OK);
    EXPECT(i == 1 || KivDatasetSetCurrency(lines, KIV_NO_ROW, 1, (int64_t)10000 * (i + 1)) == KIV_OK);
    EXPECT(KivDatasetPost(lines, NULL) == KIV_OK);
  }
  EXPECT(KivAggregateGet(sum, &key, 1, &value) == 1 && value.kind == KIV_VALUE_CURRENCY && value.integer == 40000);
  EXPECT(KivAggregateGet(sum, NULL, 0, &value) == -KIV_ERROR_GENERAL);
  EXPECT(LastMessageIs("Dataset \"linii\": gruparea are 1 campuri, nu 0"));
  EXPECT(KivAggregateGet(names, NULL, 0, &value) == 1 && value.size == 4 && memcmp(value.units, "Beta", 4) == 0);
  EXPECT(KivAggregateGroupCount(sum) == 2);
  EXPECT(KivAggregateGroupKey(sum, 1, 0, &value) == 1 && value.size == 4 && memcmp(value.units, "Beta", 4) == 0);
  EXPECT(KivAggregateGroupValue(sum, 1, &value) == 0);
  EXPECT(KivAggregateGroupValue(sum, 0, &value) == 1 && value.integer == 40000);
  EXPECT(KivAggregateGroupValue(sum, 2, &value) == -KIV_ERROR_LIST_INDEX);
  EXPECT(KivAggregateGroupKey(sum, 0, 1, &value) == -KIV_ERROR_LIST_INDEX);
  KivAggregateFree(names);
  EXPECT(KivAggregateNewWith(lines, "count(nume || :p)", KIV_ZERO_ENDED, NULL, 0, "p", 1, &key, 1, &names) == KIV_OK);
  EXPECT(KivAggregateGet(names, NULL, 0, &value) == 1 && value.integer == 3);
  KivAggregateFree(names);

  EXPECT(KivAggregateNew(lines, "sum(nume)", KIV_ZERO_ENDED, NULL, 0, &names) == -KIV_ERROR_FILTER);
  EXPECT(KivLastErrorPlace(NULL, &offset) == 1 && offset == 4);
  EXPECT(KivDatasetTakeSnapshot(lines, &image) == KIV_OK);
  EXPECT(KivAggregateNew(image, "count(*)", KIV_ZERO_ENDED, NULL, 0, &names) == -KIV_ERROR_ARGUMENT);
  KivDatasetFree(image);
  KivDatasetFree(lines);
  EXPECT(KivAggregateGroupCount(sum) == -KIV_ERROR_GENERAL);
  EXPECT(LastMessageIs("Aggregate: setul de date nu mai exista"));
  KivAggregateFree(sum);
  KivAggregateFree(NULL);
  KivSchemaFree(schema);
}
