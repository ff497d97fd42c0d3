/* Datasets as columns in memory. */
#include "Expect.h"

static KivDataset* Amounts(void) {
  KivSchema* schema = KivSchemaNew();
  KivDataset* lines = NULL;
  EXPECT(KivSchemaAddField(schema, "suma", 4, KIV_FIELD_CURRENCY, 0, 0) == KIV_OK);
  EXPECT(KivDatasetNew("linii", 5, schema, &lines) == KIV_OK && KivDatasetInsert(lines) == KIV_OK);
  EXPECT(KivDatasetSetCurrency(lines, KIV_NO_ROW, 0, 12500) == KIV_OK && KivDatasetPost(lines, NULL) == KIV_OK);
  KivSchemaFree(schema);
  return lines;
}

void DatasetArrowTest(void) {
  KivDataset* lines = Amounts();
  KivDataset* snapshot = NULL;
  KivDataset* read = NULL;
  struct ArrowArrayStream stream;
  struct ArrowSchema schema;
  struct ArrowArray batch;
  int32_t type = -1;
  EXPECT(KivDatasetTakeSnapshot(lines, &snapshot) == KIV_OK);
  EXPECT(KivDatasetArrowExport(snapshot, 0, &stream) == KIV_OK);
  KivDatasetFree(snapshot);
  EXPECT(stream.get_schema(&stream, &schema) == 0 && schema.n_children == 1);
  EXPECT(strcmp(schema.children[0]->format, "d:19,4") == 0);
  schema.release(&schema);
  EXPECT(KivDatasetArrowImport(&stream, "citite", KIV_ZERO_ENDED, NULL, 0, &read) == KIV_OK);
  EXPECT(stream.release == NULL && schema.release == NULL);
  GIVES("citite", KivDatasetName, read);
  GIVES("1.2500", KivDatasetValueText, read, 0, 0);
  KivDatasetFree(read);
  read = NULL;
  EXPECT(KivDatasetArrowExport(lines, KIV_ARROW_TEN_THOUSANDTHS, &stream) == KIV_OK);
  EXPECT(stream.get_next(&stream, &batch) == 0 && batch.length == 1);
  EXPECT(*(const int64_t*)batch.children[0]->buffers[1] == 12500);
  batch.release(&batch);
  stream.release(&stream);
  EXPECT(KivDatasetArrowImport(&stream, "t", 1, NULL, 0, &read) == -KIV_ERROR_PACKET && read == NULL);
  EXPECT(LastMessageIs("ImportArrow: fluxul a fost deja eliberat sau nu are functii"));
  EXPECT(KivDatasetArrowExport(lines, 2, &stream) == -KIV_ERROR_ARGUMENT);
  EXPECT(LastMessageIs("KivDatasetArrowExport: options: valoare necunoscuta"));
  EXPECT(KivDatasetArrowExport(lines, 0, NULL) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivDatasetArrowExport(lines, KIV_ARROW_TEN_THOUSANDTHS, &stream) == KIV_OK);
  EXPECT(KivDatasetArrowImport(&stream, NULL, 1, NULL, 0, &read) == -KIV_ERROR_ARGUMENT && stream.release != NULL);
  {
    KivSchema* types = KivSchemaNew();
    EXPECT(KivSchemaAddField(types, "suma", 4, KIV_FIELD_CURRENCY, 0, 0) == KIV_OK);
    EXPECT(KivDatasetArrowImport(&stream, "t", 1, types, KIV_ARROW_TEN_THOUSANDTHS, &read) == KIV_OK);
    KivSchemaFree(types);
  }
  EXPECT(KivDatasetFieldInfo(read, 0, &type, NULL, NULL) == KIV_OK && type == KIV_FIELD_CURRENCY);
  KivDatasetFree(read);
  KivDatasetFree(lines);
}
