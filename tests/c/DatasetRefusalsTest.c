#include "Expect.h"

/* That a call is refused with this message. */
#define REFUSES(expected, call)                                      \
  do {                                                               \
    EXPECT((call) < 0);                                              \
    if (!LastMessageIs(expected)) {                                  \
      KivLastErrorMessage(buffer, sizeof buffer);                    \
      printf("%s:%d: is told \"%s\"\n", __FILE__, __LINE__, buffer); \
      ++failures;                                                    \
    }                                                                \
  } while (0)

static void Ignore(void* context, int32_t kind, uint32_t row, const uint16_t* fields, size_t count) {
  (void)context, (void)kind, (void)row, (void)fields, (void)count;
}

static void RefusesFields(const KivDataset* lines) {
  KivSchema* schema = KivSchemaNew();
  char name[] = "f0000";
  int i;
  for (i = 0; i < 1024; ++i) {
    sprintf(name + 1, "%d", i);
    EXPECT(KivSchemaAddField(schema, name, KIV_ZERO_ENDED, KIV_FIELD_INT32, 0, 0) == KIV_OK);
  }
  REFUSES("KivSchemaAddField: schema: mai multe campuri nu incap",
          KivSchemaAddField(schema, "x", 1, KIV_FIELD_INT32, 0, 0));
  KivSchemaFree(schema);
  REFUSES("Dataset \"linii\": campul 2 nu exista", KivDatasetFieldName(lines, 2, buffer, sizeof buffer));
  REFUSES("KivDatasetCountOf: state: valoare necunoscuta", KivDatasetCountOf(lines, -1));
  REFUSES("KivDatasetCountOf: state: valoare necunoscuta", KivDatasetCountOf(lines, KIV_ROW_DELETED + 1));
  EXPECT(KivDatasetCountOf(lines, KIV_ROW_DELETED) == 0 && KivDatasetCountOf(lines, KIV_ROW_UNMODIFIED) == 0);
}

static void RefusesWhatIsOpen(KivDataset* lines) {
  const uint8_t byte = 0;
  size_t listener = 9;
  KivFieldValue value;
  memset(&value, 0, sizeof value);
  EXPECT(KivDatasetInsert(lines) == KIV_OK);
  REFUSES("KivDatasetCompact: dataset: un rand este deschis", KivDatasetCompact(lines));
  REFUSES("KivDatasetSetBytes: bytes: dimensiunea lipseste",
          KivDatasetSetBytes(lines, KIV_NO_ROW, 1, &byte, KIV_ZERO_ENDED));
  EXPECT(KivDatasetCancel(lines) == KIV_OK);
  REFUSES("KivDatasetLoadRow: dataset: nu este nicio incarcare in curs", KivDatasetLoadRow(lines, &value, 1));
  EXPECT(KivDatasetBeginLoad(lines) == KIV_OK);
  REFUSES("KivDatasetBeginLoad: dataset: o incarcare este in curs", KivDatasetBeginLoad(lines));
  EXPECT(KivDatasetCancelLoad(lines) == KIV_OK);
  EXPECT(KivDatasetAddListener(lines, NULL, Ignore, NULL, &listener) == KIV_OK && listener == 0);
  REFUSES("KivDatasetRemoveListener: listener: valoare necunoscuta", KivDatasetRemoveListener(lines, 1));
  EXPECT(KivDatasetRemoveListener(lines, 0) == KIV_OK);
  REFUSES("KivDatasetRemoveListener: listener: valoare necunoscuta", KivDatasetRemoveListener(lines, 0));
}

static void RefusesPackets(KivDataset* lines) {
  KivJournal* journal = NULL;
  REFUSES("KivDatasetWrite: sink: pointer nul", KivDatasetWrite(lines, NULL, NULL));
  REFUSES("KivJournalNew: flush: valoare necunoscuta", KivJournalNew(lines, "x.kdp", 5, -1, 0, &journal));
  REFUSES("KivJournalNew: flush: valoare necunoscuta",
          KivJournalNew(lines, "x.kdp", 5, KIV_FLUSH_NEVER + 1, 0, &journal));
  REFUSES("KivDatasetSave: options: valoare necunoscuta", KivDatasetSave(lines, "x.kdp", 5, 4));
  EXPECT(journal == NULL);
}

static void RefusesGroups(KivDataset* lines) {
  KivAggregate* count = NULL;
  KivFieldValue value;
  EXPECT(KivDatasetInsert(lines) == KIV_OK && KivDatasetSetInt64(lines, KIV_NO_ROW, 0, 7) == KIV_OK);
  EXPECT(KivDatasetPost(lines, NULL) == KIV_OK);
  EXPECT(KivAggregateNew(lines, "count(*)", KIV_ZERO_ENDED, "id", 2, &count) == KIV_OK);
  EXPECT(KivAggregateGroupCount(count) == 1 && KivAggregateGroupValue(count, 0, &value) == 1 && value.integer == 1);
  REFUSES("Aggregate: grupul 1 nu exista", KivAggregateGroupValue(count, 1, &value));
  REFUSES("Aggregate: cheia grupului nu are acest camp", KivAggregateGroupKey(count, 0, 1, &value));
  KivAggregateFree(count);
}

void DatasetRefusalsTest(void) {
  KivSchema* schema = KivSchemaNew();
  KivDataset* lines = NULL;
  EXPECT(KivSchemaAddField(schema, "id", 2, KIV_FIELD_INT32, 0, 0) == KIV_OK);
  EXPECT(KivSchemaAddField(schema, "poza", 4, KIV_FIELD_BLOB, 0, 0) == KIV_OK);
  EXPECT(KivDatasetNew("linii", KIV_ZERO_ENDED, schema, &lines) == KIV_OK);
  RefusesFields(lines);
  RefusesWhatIsOpen(lines);
  RefusesPackets(lines);
  RefusesGroups(lines);
  KivDatasetFree(lines);
  KivSchemaFree(schema);
}
