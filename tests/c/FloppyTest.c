/* Copies onto a diskette, the application's function that packs included; the rules, their C++ tests say. */
#include <stdio.h>

#include "../../examples/c-host/toolkit.h"
#include "Expect.h"

static char folder[300];
static char large[320];
static char archive[320];
static char dialogs[2000];
static int32_t answer;

static void Under(char* path, const char* name) {
  strcpy(path, folder);
  strcat(path, name);
}

static int WriteFile(const char* path, size_t size) {
  FILE* file = fopen(path, "wb");
  return file != NULL && fseek(file, (long)size - 1, SEEK_SET) == 0 && fputc('x', file) == 'x' && fclose(file) == 0;
}

static int32_t Ask(void* context, int32_t kind, const char* text, size_t length, int32_t buttons) {
  (void)context;
  (void)kind;
  strncat(dialogs, text, length < 300 ? length : 300);
  strcat(dialogs, "|");
  return buttons == KIV_BUTTONS_OK ? KIV_ANSWER_OK : answer;
}

static KivStatus Pack(void* data, const char* const* sources, const char* const* destinations, size_t count,
                      KivFloppyArchive* made) {
  EXPECT(count == 1 && strcmp(sources[0], large) == 0 && strcmp(destinations[0], "A:\\mare") == 0);
  EXPECT(WriteFile(archive, 10));
  EXPECT(KivFloppyArchiveSet(NULL, "a", 1, "b", 1) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivFloppyArchiveSet(made, NULL, 1, "b", 1) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivFloppyArchiveSet(made, "A:\\zip", KIV_ZERO_ENDED, archive, KIV_ZERO_ENDED) == KIV_OK);
  return *(const KivStatus*)data;
}

static KivStatus CopyLarge(void) {
  const char* const sources[] = {large};
  const char* const destinations[] = {"A:\\mareX"};
  const size_t length = 7;
  dialogs[0] = '\0';
  return KivCopiazaPeDischetaMulti(sources, NULL, 1, destinations, &length, 1);
}

static void Packing(void) {
  KivStatus packed = KIV_OK;
  EXPECT(KivSetOnProcFaZipPentruDischeta(Pack, &packed) == KIV_OK);
  answer = KIV_ANSWER_CANCEL;
  EXPECT(CopyLarge() == KIV_OK && strcmp(dialogs, "Introduceti o discheta in unitate.|") == 0);
  EXPECT(KivDimensiuneFisier(archive, KIV_ZERO_ENDED) == 0);
  packed = -3;
  EXPECT(CopyLarge() == -KIV_ERROR_GENERAL && LastMessageIs("Aplicatia nu a putut arhiva fisierele: -3"));
  EXPECT(KivDimensiuneFisier(archive, KIV_ZERO_ENDED) == 0);
  EXPECT(KivSetOnProcFaZipPentruDischeta(NULL, NULL) == KIV_OK);
  EXPECT(WriteFile(large, 1500000) && CopyLarge() == -KIV_ERROR_GENERAL);
}

static void Copying(void) {
  char copy[320];
  char small[320];
  Under(copy, "copie");
  Under(small, "mic");
  EXPECT(WriteFile(small, 5000));
  EXPECT(KivStareFloppy() == KIV_FLOPPY_NONE && KivExistaFloppy() == 0);
  if (KivSetFloppyRoot(folder, KIV_ZERO_ENDED) == KIV_OK) { /* a folder stands for the drive: not on Windows */
    EXPECT(KivStareFloppy() == KIV_FLOPPY_READY);
    answer = KIV_ANSWER_OK;
    EXPECT(KivCopiazaPeDischeta(small, KIV_ZERO_ENDED, "A:\\copieX", 8) == KIV_OK);
    EXPECT(KivComparaFisiere(small, KIV_ZERO_ENDED, copy, KIV_ZERO_ENDED) == 1);
    EXPECT(KivSetFloppyRoot(NULL, 0) == KIV_OK);
    EXPECT(KivFullFormatDriveA(0, &answer) == -KIV_ERROR_SYSTEM &&
           KivFullFormatDriveB(0, &answer) == -KIV_ERROR_SYSTEM);
  } else {
    EXPECT(KivLastError() == KIV_ERROR_SYSTEM);
  }
  EXPECT(KivSetFloppyRoot(NULL, 1) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivFullFormatDriveA(0, NULL) == -KIV_ERROR_ARGUMENT && KivFullFormatDriveB(0, NULL) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivCopiazaPeDischeta("none", 4, "A:\\x", 4) == -KIV_ERROR_GENERAL &&
         LastMessageIs("Fisierul none nu exista!"));
  EXPECT(KivCopiazaPeDischetaMulti(NULL, NULL, 1, NULL, NULL, 1) == -KIV_ERROR_ARGUMENT);
}

void FloppyTest(void) {
  static ToolScreen screen;
  KivHostTable table = ToolkitTable(&screen);
  char name[300];
  EXPECT(KivGetNewTempFileName("kivtools-floppy", KIV_ZERO_ENDED, "d", 1, name, sizeof name) > 0);
  strcpy(folder, name);
  /* A copy of nothing makes the folder. */
  EXPECT(KivRecursiveCopyWithExt("none", KIV_ZERO_ENDED, folder, KIV_ZERO_ENDED, NULL, NULL, 0, NULL, 0) == KIV_OK);
  strcat(folder, "/");
  Under(large, "mare");
  Under(archive, "arhiva.zip");
  table.ask = Ask;
  EXPECT(KivHostInstall(&table) == KIV_OK && WriteFile(large, 1300000));
  Packing();
  Copying();
  EXPECT(KivHostRemove() == KIV_OK && KivRecursiveDelete(name, KIV_ZERO_ENDED) == KIV_OK);
  EXPECT(KivReadWindowsTempPath(folder, sizeof folder) > 0);
  EXPECT(KivSetTempFilePath(folder, KIV_ZERO_ENDED) == KIV_OK); /* which the names have taken its separator from */
}
