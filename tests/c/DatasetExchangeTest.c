/* Datasets in the forms of other programs. */
#include <stdio.h>

#include "Expect.h"

static void PutFile(const char* path, const char* text) {
  FILE* const file = fopen(path, "wb");
  EXPECT(file != NULL && fputs(text, file) >= 0 && fclose(file) == 0);
}

static int FileIs(const char* path, const char* expected) {
  char text[400];
  FILE* const file = fopen(path, "rb");
  const size_t size = file == NULL ? 0 : fread(text, 1, sizeof text - 1, file);
  text[size] = '\0';
  return file != NULL && fclose(file) == 0 && strcmp(text, expected) == 0;
}

/* A text that is read or written piece by piece. */
typedef struct {
  char text[1000];
  size_t size, at;
} Piece;

static KivStatus PutPiece(void* context, const uint8_t* bytes, size_t size) {
  Piece* const piece = context;
  if (size > sizeof piece->text - piece->size) {
    return -1;
  }
  memcpy(piece->text + piece->size, bytes, size);
  piece->size += size;
  return KIV_OK;
}

static KivLength GetPiece(void* context, uint8_t* into, size_t capacity) {
  Piece* const piece = context;
  size_t count = piece->size - piece->at;
  count = count < capacity ? count : capacity;
  memcpy(into, piece->text + piece->at, count);
  piece->at += count;
  return (KivLength)count;
}

static void StreamsTest(const KivDataset* lines) {
  Piece csv = {{0}, 0, 0};
  Piece xml = {{0}, 0, 0};
  Piece full = {{0}, sizeof full.text, 0};
  KivDataset* read = NULL;
  EXPECT(KivDatasetWriteCsv(lines, ';', KIV_CSV_ROMANIAN, PutPiece, &csv) == KIV_OK);
  EXPECT(strncmp(csv.text, "cod;suma\r\n007;1234,5\r\n", csv.size) == 0);
  EXPECT(KivDatasetWriteXml(lines, PutPiece, &xml) == KIV_OK);
  EXPECT(KivDatasetReadXml(GetPiece, &xml, &read) == KIV_OK);
  GIVES("007", KivDatasetValueText, read, 0, 0);
  KivDatasetFree(read);
  read = NULL;
  EXPECT(KivDatasetReadCsv(GetPiece, &csv, "citit", 5, NULL, 0, KIV_CSV_ROMANIAN, &read) == KIV_OK);
  GIVES("citit", KivDatasetName, read);
  GIVES("1234.5000", KivDatasetValueText, read, 0, 1);
  EXPECT(KivDatasetWriteCsv(read, 0, 0, PutPiece, &full) == -KIV_ERROR_GENERAL);
  EXPECT(KivDatasetWriteXml(read, NULL, NULL) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivDatasetReadXml(NULL, NULL, &read) == -KIV_ERROR_ARGUMENT);
  EXPECT(LastMessageIs("KivDatasetReadXml: source: pointer nul"));
  EXPECT(KivDatasetReadCsv(GetPiece, &csv, "t", 1, NULL, 0, 32, &read) == -KIV_ERROR_ARGUMENT);
  KivDatasetFree(read);
}

void DatasetExchangeTest(void) {
  static const char kPath[] = "kiv_exchange.csv";
  KivSchema* types = KivSchemaNew();
  static const char* const kKeys[] = {"cod"};
  KivDataset* lines = NULL;
  KivDataset* before = NULL;
  KivDelta* delta = NULL;
  uint64_t line = 9;
  uint64_t column = 9;
  int32_t type = -1;
  EXPECT(KivSchemaAddField(types, "suma", 4, KIV_FIELD_DOUBLE, 0, 0) == KIV_OK);
  PutFile(kPath, "cod;suma\n007;1.234,5\n");
  EXPECT(KivDatasetLoadCsv(kPath, KIV_ZERO_ENDED, "", 0, types, 0, KIV_CSV_ROMANIAN, &lines) == KIV_OK);
  GIVES("kiv_exchange", KivDatasetName, lines);
  GIVES("007", KivDatasetValueText, lines, 0, 0);
  EXPECT(KivDatasetFieldInfo(lines, 1, &type, NULL, NULL) == KIV_OK && type == KIV_FIELD_DOUBLE);
  EXPECT(KivDatasetSaveCsv(lines, kPath, KIV_ZERO_ENDED, 0, KIV_CSV_MARK | KIV_CSV_UTF8, 0) == KIV_OK);
  EXPECT(FileIs(kPath,
                "\xEF\xBB\xBF"
                "cod,suma\r\n007,1234.5\r\n"));
  EXPECT(KivDatasetSaveCsv(lines, kPath, KIV_ZERO_ENDED, '|', KIV_CSV_ROMANIAN, KIV_SAVE_NO_FLUSH) == KIV_OK);
  EXPECT(FileIs(kPath, "cod|suma\r\n007|1234,5\r\n"));
  StreamsTest(lines);
  EXPECT(KivDatasetSaveCsv(lines, kPath, KIV_ZERO_ENDED, 200, 0, 0) == -KIV_ERROR_ARGUMENT);
  EXPECT(LastMessageIs("KivDatasetSaveCsv: separator: valoare necunoscuta"));
  EXPECT(KivDatasetSaveCsv(lines, kPath, KIV_ZERO_ENDED, 0, 32, 0) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivDatasetSaveCsv(lines, kPath, KIV_ZERO_ENDED, 0, KIV_CSV_UTF8 | KIV_CSV_WINDOWS1250, 0) ==
         -KIV_ERROR_ARGUMENT);
  EXPECT(LastMessageIs("KivDatasetSaveCsv: csv: valoare necunoscuta") && KivLastErrorLine(&line, &column) == 0);
  KivDatasetFree(lines);
  lines = NULL;
  PutFile(kPath, "cod,suma\n1,2\n3,x\n");
  EXPECT(KivDatasetLoadCsv(kPath, KIV_ZERO_ENDED, "t", 1, types, ',', 0, &lines) == -KIV_ERROR_PACKET && lines == NULL);
  EXPECT(
      LastMessageIs("LoadCsv: kiv_exchange.csv: linia 3, coloana 2: \"suma\": \"x\" nu este o valoare de tip Double"));
  EXPECT(KivLastErrorLine(NULL, NULL) == 1 && KivLastErrorLine(&line, &column) == 1 && line == 3 && column == 2);
  EXPECT(KivDatasetLoadCsv(kPath, KIV_ZERO_ENDED, "t", 1, NULL, 0, 0, &lines) == KIV_OK);
  EXPECT(KivDatasetSaveXml(lines, "kiv_exchange.xml", KIV_ZERO_ENDED, 0) == KIV_OK);
  KivDatasetFree(lines);
  lines = NULL;
  EXPECT(KivDatasetLoadXml("kiv_exchange.xml", KIV_ZERO_ENDED, &lines) == KIV_OK);
  GIVES("x", KivDatasetValueText, lines, 1, 1);
  EXPECT(KivDatasetSetText(lines, 1, 1, "y", 1) == KIV_OK && KivDatasetPost(lines, NULL) == KIV_OK);
  EXPECT(KivDatasetLoadCsv(kPath, KIV_ZERO_ENDED, "t", 1, NULL, 0, 0, &before) == KIV_OK);
  EXPECT(KivDatasetDifference(before, lines, kKeys, NULL, 1, &delta) == KIV_OK && KivDeltaCount(delta) == 1);
  EXPECT(KivDatasetDifference(before, lines, NULL, NULL, 0, &delta) == -KIV_ERROR_GENERAL);
  KivDeltaFree(delta);
  KivDatasetFree(before);
  KivDatasetFree(lines);
  EXPECT(KivDatasetLoadXml(kPath, KIV_ZERO_ENDED, &lines) == -KIV_ERROR_PACKET);
  EXPECT(KivLastErrorLine(&line, &column) == 1 && line == 1 && column == 1);
  EXPECT(remove("kiv_exchange.xml") == 0);
  KivSchemaFree(types);
  EXPECT(remove(kPath) == 0);
}
