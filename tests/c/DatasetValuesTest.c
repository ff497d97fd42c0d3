#include "Expect.h"

/* What the listeners are told. */
static int refuses;
static uint32_t told_row;
static int32_t told_kind;
static size_t told_fields;
static int asked;

static KivStatus Ask(void* context, const KivProposal* proposal) {
  asked += proposal->count == 3 && proposal->values[1].kind == KIV_VALUE_INTEGER ? 1 : 100;
  EXPECT(context == &asked && proposal->values[1].integer == 7 && proposal->changed[2] == 1);
  return refuses;
}

static void Told(void* context, int32_t kind, uint32_t row, const uint16_t* fields, size_t count) {
  EXPECT(context == &asked && (count == 0 || fields[0] == 2));
  told_kind = kind;
  told_row = row;
  told_fields = count;
}

static KivFieldValue Integer(int64_t value) {
  KivFieldValue made = {KIV_VALUE_INTEGER, 0, 0, NULL, 0, {0, 0, 0, {0}}};
  made.integer = value;
  return made;
}

static KivFieldValue Units(int32_t kind, const void* units, size_t size) {
  KivFieldValue made = {0, 0, 0, NULL, 0, {0, 0, 0, {0}}};
  made.kind = kind;
  made.units = units;
  made.size = size;
  return made;
}

static void LoadsAndFinds(KivDataset* invoices) {
  KivFieldValue values[3];
  const uint16_t wide[] = {0x219, 0};
  uint32_t row = 9;
  values[0] = Integer(2026);
  values[1] = Integer(7);
  values[2] = Units(KIV_VALUE_WIDE_TEXT, wide, KIV_ZERO_ENDED);
  EXPECT(KivDatasetLoadRow(invoices, values, 3) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivDatasetBeginLoad(invoices) == KIV_OK && KivDatasetBeginLoad(invoices) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivDatasetLoadRow(invoices, values, 3) == KIV_OK && KivDatasetLoadRow(invoices, values, 2) < 0);
  EXPECT(KivDatasetInsert(invoices) == KIV_OK && KivDatasetPost(invoices, NULL) == -KIV_ERROR_GENERAL);
  EXPECT(KivDatasetCancel(invoices) == KIV_OK && KivDatasetCancelLoad(invoices) == KIV_OK);
  EXPECT(KivDatasetRowCount(invoices) == 0 && KivDatasetBeginLoad(invoices) == KIV_OK);
  EXPECT(KivDatasetLoadRow(invoices, values, 3) == KIV_OK && KivDatasetLoadRow(invoices, values, 3) == KIV_OK);
  EXPECT(KivDatasetEndLoad(invoices) == -KIV_ERROR_GENERAL);
  EXPECT(LastMessageIs("Dataset \"facturi\": cheia 2026, 7 exista deja"));
  EXPECT(KivDatasetCancelLoad(invoices) == KIV_OK && KivDatasetBeginLoad(invoices) == KIV_OK);
  EXPECT(KivDatasetLoadRow(invoices, values, 3) == KIV_OK && KivDatasetEndLoad(invoices) == KIV_OK);
  EXPECT(KivDatasetChangeCount(invoices) == 0 && KivDatasetEndLoad(invoices) == -KIV_ERROR_ARGUMENT);

  EXPECT(KivDatasetFind(invoices, values, 2, &row) == 1 && row == 0);
  EXPECT(KivDatasetFind(invoices, values, 1, &row) == -KIV_ERROR_GENERAL);
  values[1] = Integer(8);
  EXPECT(KivDatasetFind(invoices, values, 2, &row) == 0 && row == 0);
  values[1].kind = 10;
  EXPECT(KivDatasetFind(invoices, values, 2, &row) == -KIV_ERROR_ARGUMENT);
  EXPECT(LastMessageIs("KivDatasetFind: key: valoare necunoscuta"));
  values[1] = Units(KIV_VALUE_BYTES, wide, KIV_ZERO_ENDED);
  EXPECT(KivDatasetFind(invoices, values, 2, &row) == -KIV_ERROR_ARGUMENT);
}

static KivDataset* walked;
static int visits;

static KivStatus Visit(void* context, const KivChangeRecord* change) {
  EXPECT(context == &visits && change->row == 0 && KivDatasetRowCount(walked) == 1);
  EXPECT(change->kind == KIV_CHANGE_UPDATE && change->count == 1 && change->fields[0] == 2);
  EXPECT(change->before[0].kind == KIV_VALUE_WIDE_TEXT && change->before[0].size == 1);
  EXPECT(KivDatasetDelete(walked, 0) == -KIV_ERROR_GENERAL && KivDatasetAcceptChanges(walked) == -KIV_ERROR_GENERAL);
  return ++visits == 2 ? 1 : KIV_OK;
}

static void WalksChanges(KivDataset* invoices) {
  const uint16_t wide[] = {'a', 'b'};
  int length;
  walked = invoices;
  EXPECT(KivDatasetForEachChange(invoices, NULL, NULL) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivDatasetForEachChange(invoices, Visit, &visits) == KIV_OK && visits == 0);
  for (length = 1; length >= 0; --length) {
    EXPECT(KivDatasetSetWideText(invoices, 0, 2, wide + length, 1) == KIV_OK);
    EXPECT(KivDatasetPost(invoices, NULL) == KIV_OK);
  }
  EXPECT(KivDatasetForEachChange(invoices, Visit, &visits) == -KIV_ERROR_GENERAL && visits == 2);
  EXPECT(LastMessageIs("KivDatasetForEachChange: visitor: parcurgerea a fost oprita"));
  EXPECT(KivDatasetCancelChanges(invoices) == KIV_OK);
}

static void TellsListeners(KivDataset* invoices) {
  const uint16_t wide[] = {0x21B, 0x21B};
  size_t listener = 9;
  EXPECT(KivDatasetAddListener(invoices, Ask, Told, &asked, &listener) == KIV_OK && listener == 0);
  refuses = 1;
  EXPECT(KivDatasetSetWideText(invoices, 0, 2, wide, 2) == KIV_OK);
  EXPECT(KivDatasetPost(invoices, NULL) == -KIV_ERROR_GENERAL && asked == 1);
  EXPECT(LastMessageIs("Dataset \"facturi\": modificarea a fost refuzata de aplicatie"));
  refuses = 0;
  EXPECT(KivDatasetCompact(invoices) == -KIV_ERROR_ARGUMENT); /* a row is open */
  EXPECT(KivDatasetPost(invoices, NULL) == KIV_OK && asked == 2);
  EXPECT(told_kind == KIV_CHANGE_UPDATE && told_row == 0 && told_fields == 1);
  EXPECT(KivDatasetBeginUpdate(invoices) == KIV_OK && KivDatasetUndoLast(invoices) == 1);
  EXPECT(told_kind == KIV_CHANGE_UPDATE && KivDatasetEndUpdate(invoices) == KIV_OK);
  EXPECT(told_kind == KIV_CHANGE_ALL && told_row == KIV_NO_ROW && told_fields == 0);
  EXPECT(KivDatasetRemoveListener(invoices, 0) == KIV_OK);
  EXPECT(KivDatasetRemoveListener(invoices, 0) == -KIV_ERROR_ARGUMENT);
}

void DatasetValuesTest(void) {
  KivSchema* schema = KivSchemaNew();
  KivDataset* invoices = NULL;
  KivDataset* before = NULL;
  uint16_t units[4];
  uint32_t row = 0;
  int32_t number = 0;
  KivFieldValue standard;
  EXPECT(KivSchemaAddField(schema, "an", 2, KIV_FIELD_INT16, 0, KIV_FLAG_KEY) == KIV_OK);
  EXPECT(KivSchemaAddField(schema, "numar", 5, KIV_FIELD_INT32, 0, KIV_FLAG_KEY) == KIV_OK);
  EXPECT(KivSchemaAddField(schema, "lat", 3, KIV_FIELD_WIDE_TEXT, 0, 0) == KIV_OK);
  standard = Units(KIV_VALUE_TEXT, "x", 1);
  EXPECT(KivSchemaSetDefault(schema, 2, &standard) == KIV_OK);
  EXPECT(KivDatasetNew("facturi", KIV_ZERO_ENDED, schema, &invoices) == -KIV_ERROR_CAST);
  standard = Units(KIV_VALUE_WIDE_TEXT, u"\x219", KIV_ZERO_ENDED);
  EXPECT(KivSchemaSetDefault(schema, 3, &standard) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivSchemaSetDefault(schema, 2, &standard) == KIV_OK);
  EXPECT(KivDatasetNew("facturi", KIV_ZERO_ENDED, schema, &invoices) == KIV_OK);
  EXPECT(KivDatasetFieldDefault(invoices, 1, &standard) == 0 && KivDatasetFieldDefault(invoices, 3, &standard) < 0);
  EXPECT(KivDatasetFieldDefault(invoices, 2, &standard) == 1 && ((const uint16_t*)standard.units)[0] == 0x219);
  KivSchemaFree(schema);
  LoadsAndFinds(invoices);
  TellsListeners(invoices);
  WalksChanges(invoices);

  EXPECT(KivDatasetTakeSnapshot(invoices, &before) == KIV_OK && KivDatasetDelete(invoices, 0) == KIV_OK);
  KivDatasetFree(invoices);
  EXPECT(KivDatasetRowCount(before) == 1 && KivDatasetGetWideText(before, 0, 2, units, 4) == 1 && units[0] == 0x219);
  EXPECT(KivDatasetState(before, 0, &number) == KIV_OK && number == KIV_ROW_UNMODIFIED);
  EXPECT(KivDatasetDelete(before, 0) == -KIV_ERROR_ARGUMENT && KivDatasetInsert(before) == -KIV_ERROR_ARGUMENT);
  EXPECT(LastMessageIs("KivDatasetInsert: dataset: o imagine se poate numai citi"));
  EXPECT(KivDatasetSetNull(before, 0, 2) == -KIV_ERROR_ARGUMENT && KivDatasetFindInt64(before, 7, &row) < 0);
  KivDatasetFree(before);
}
