/* Packets in memory and as files, the journal, and what a damaged file is answered with. */
#include <stdio.h>

#include "Expect.h"

typedef struct Packet {
  uint8_t bytes[4000];
  size_t size;
  size_t at;
  KivStatus answer;
} Packet;

static KivStatus Take(void* context, const uint8_t* bytes, size_t size) {
  Packet* packet = context;
  if (size > sizeof packet->bytes - packet->size) {
    return -KIV_ERROR_GENERAL;
  }
  memcpy(packet->bytes + packet->size, bytes, size);
  packet->size += size;
  return packet->answer;
}

static KivLength Give(void* context, uint8_t* bytes, size_t capacity) {
  Packet* packet = context;
  const size_t left = packet->size - packet->at;
  const size_t count = left < capacity ? left : capacity;
  memcpy(bytes, packet->bytes + packet->at, count);
  packet->at += count;
  return packet->answer != KIV_OK ? packet->answer : (KivLength)count;
}

static KivDataset* MakeLines(void) {
  KivSchema* schema = KivSchemaNew();
  KivDataset* lines = NULL;
  EXPECT(KivSchemaAddField(schema, "id", 2, KIV_FIELD_AUTO_INC, 0, KIV_FLAG_KEY) == KIV_OK);
  EXPECT(KivSchemaAddField(schema, "nume", 4, KIV_FIELD_TEXT, 10, KIV_FLAG_BINARY) == KIV_OK);
  EXPECT(KivSchemaAddField(schema, "suma", 4, KIV_FIELD_CURRENCY, 0, 0) == KIV_OK);
  EXPECT(KivDatasetNew("linii", 5, schema, &lines) == KIV_OK);
  KivSchemaFree(schema);
  EXPECT(KivDatasetInsert(lines) == KIV_OK);
  EXPECT(KivDatasetSetText(lines, KIV_NO_ROW, 1, "Alfa", 4) == KIV_OK);
  EXPECT(KivDatasetSetCurrency(lines, KIV_NO_ROW, 2, 50000) == KIV_OK);
  EXPECT(KivDatasetPost(lines, NULL) == KIV_OK && KivDatasetAcceptChanges(lines) == KIV_OK);
  EXPECT(KivDatasetSetNull(lines, 0, 1) == KIV_OK && KivDatasetPost(lines, NULL) == KIV_OK);
  return lines;
}

static void Streams(void) {
  static Packet packet;
  KivDataset* lines = MakeLines();
  KivDataset* read = NULL;
  KivDelta* delta = NULL;
  int32_t number = 0;
  int32_t flags = 0;
  uint64_t offset = 0;
  EXPECT(KivDatasetWrite(lines, Take, &packet) == KIV_OK && packet.size > 100);
  EXPECT(KivDatasetRead(Give, &packet, &read) == KIV_OK && KivDatasetChangeCount(read) == 1);
  GIVES("linii", KivDatasetName, read);
  EXPECT(KivDatasetFieldCount(read) == 3);
  GIVES("suma", KivDatasetFieldName, read, 2);
  EXPECT(KivDatasetFieldName(read, 3, NULL, 0) == -KIV_ERROR_LIST_INDEX);
  EXPECT(KivDatasetFieldInfo(read, 0, &number, NULL, &flags) == KIV_OK);
  EXPECT(number == KIV_FIELD_AUTO_INC && flags == KIV_FLAG_KEY);
  EXPECT(KivDatasetFieldInfo(read, 1, NULL, NULL, &flags) == KIV_OK && flags == KIV_FLAG_BINARY);
  EXPECT(KivDatasetCountOf(read, KIV_ROW_MODIFIED) == 1 && KivDatasetCountOf(read, 4) == -KIV_ERROR_ARGUMENT);
  GIVES("5.0000", KivDatasetValueText, read, 0, 2);
  GIVES("", KivDatasetValueText, read, 0, 1);

  packet.bytes[60] ^= 1;
  packet.at = 0;
  EXPECT(KivLastErrorPlace(&number, &offset) == 0);
  EXPECT(KivDatasetRead(Give, &packet, &read) == -KIV_ERROR_PACKET && KivLastError() == KIV_ERROR_PACKET);
  EXPECT(LastMessageIs("ReadBinary: bucata 0 (TABL), octetul 32: suma de control nu se potriveste"));
  EXPECT(KivLastErrorPlace(NULL, NULL) == 1);
  EXPECT(KivLastErrorPlace(&number, &offset) == 1 && number == 0 && offset == 32);
  packet.answer = -1;
  EXPECT(KivDatasetRead(Give, &packet, &read) == -KIV_ERROR_GENERAL);
  EXPECT(LastMessageIs("KivDatasetRead: source: citirea a fost oprita") && KivLastErrorPlace(&number, &offset) == 0);
  EXPECT(KivDatasetWrite(lines, Take, &packet) == -KIV_ERROR_GENERAL);
  EXPECT(LastMessageIs("KivDatasetWrite: sink: scrierea a fost oprita"));
  EXPECT(KivDatasetWrite(lines, NULL, &packet) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivDatasetRead(NULL, &packet, &read) == -KIV_ERROR_ARGUMENT);

  packet.size = packet.at = 0;
  packet.answer = KIV_OK;
  EXPECT(KivDatasetMakeDelta(read, &delta) == KIV_OK && KivDeltaWrite(delta, Take, &packet) == KIV_OK);
  KivDeltaFree(delta);
  EXPECT(KivDeltaRead(Give, &packet, &delta) == KIV_OK && KivDeltaCount(delta) == 1);
  GIVES("linii", KivDeltaName, delta);
  GIVES("nume", KivDeltaFieldName, delta, 1);
  EXPECT(KivDeltaFieldCount(delta) == 3 && KivDeltaFieldInfo(delta, 1, NULL, &number, NULL) == KIV_OK && number == 10);
  GIVES("Alfa", KivDeltaValueText, delta, 0, 1, 1);
  EXPECT(KivDeltaIsNull(delta, 0, 1, 0) == 1 && KivDeltaIsNull(delta, 0, 1, 1) == 0);
  KivDeltaFree(delta);
  KivDatasetFree(read);
  KivDatasetFree(lines);
}

static void FilesAndJournal(void) {
  char path[400];
  KivDataset* lines = MakeLines();
  KivDataset* loaded = NULL;
  KivDelta* delta = NULL;
  KivJournal* journal = NULL;
  int32_t content = 0;
  uint64_t replayed = 9;
  uint64_t lost = 9;
  uint64_t size = 0;
  EXPECT(KivReadWindowsTempPath(path, sizeof path) > 0 && KivSetTempFilePath(path, KIV_ZERO_ENDED) == KIV_OK);
  EXPECT(KivGetNewTempFileName("kiv-packets", KIV_ZERO_ENDED, "kdp", 3, path, sizeof path - 5) > 0);
  EXPECT(KivDatasetSave(lines, path, KIV_ZERO_ENDED, KIV_SAVE_NO_FLUSH) == KIV_OK);
  EXPECT(KivPacketContent(path, KIV_ZERO_ENDED, &content) == KIV_OK && content == KIV_PACKET_DATASET);
  EXPECT(KivDatasetSave(lines, path, KIV_ZERO_ENDED, 4) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivJournalNew(lines, path, KIV_ZERO_ENDED, 3, 0, &journal) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivJournalNew(lines, path, KIV_ZERO_ENDED, KIV_FLUSH_NEVER, KIV_SAVE_NO_FLUSH, &journal) == KIV_OK);
  EXPECT(KivJournalSize(journal, &size) == KIV_OK && size == 28);
  EXPECT(KivDatasetDelete(lines, 0) == KIV_OK && KivJournalFlush(journal) == KIV_OK);
  EXPECT(KivDatasetSave(lines, path, KIV_ZERO_ENDED, 0) == -KIV_ERROR_GENERAL);
  EXPECT(KivDatasetLoad(path, KIV_ZERO_ENDED, &loaded, &replayed, &lost) == KIV_OK);
  EXPECT(replayed == 1 && lost == 0 && KivDatasetRowCount(loaded) == 0);
  KivDatasetFree(loaded);
  EXPECT(KivJournalSave(journal) == KIV_OK);
  KivJournalFree(journal);
  KivJournalFree(NULL);
  EXPECT(KivDatasetLoad(path, KIV_ZERO_ENDED, &loaded, &replayed, NULL) == KIV_OK && replayed == 0);
  EXPECT(KivDatasetMakeDelta(loaded, &delta) == KIV_OK);
  EXPECT(KivDeltaSave(delta, path, KIV_ZERO_ENDED, KIV_SAVE_NO_FLUSH) == KIV_OK);
  KivDeltaFree(delta);
  EXPECT(KivDeltaLoad(path, KIV_ZERO_ENDED, &delta) == KIV_OK && KivDeltaCount(delta) == 1);
  EXPECT(KivPacketContent(path, KIV_ZERO_ENDED, &content) == KIV_OK && content == KIV_PACKET_DELTA);
  EXPECT(KivDatasetLoad(path, KIV_ZERO_ENDED, &lines, NULL, NULL) == -KIV_ERROR_PACKET);
  EXPECT(KivDeltaLoad("", 0, &delta) == -KIV_ERROR_SYSTEM);
  KivDeltaFree(delta);
  KivDatasetFree(loaded);
  KivDatasetFree(lines);
  EXPECT(KivForceDelete(path, KIV_ZERO_ENDED) == 1);
  strcat(path, ".log");
  EXPECT(KivForceDelete(path, KIV_ZERO_ENDED) == 1);
}

void DatasetPacketsTest(void) {
  Streams();
  FilesAndJournal();
}
