/* Files and trees of folders in a folder of this test's own; the details, their C++ tests say. */
#include <stdio.h>

#include "../../examples/c-host/toolkit.h"
#include "Expect.h"

static char root[400];
static char other[420];

static void Under(char* path, const char* name) {
  strcpy(path, root);
  strcat(path, name);
}

static int Write(const char* path, const char* text) {
  FILE* file = fopen(path, "wb");
  return file != NULL && fputs(text, file) >= 0 && fclose(file) == 0;
}

static void SingleFiles(void) {
  char a[420];
  char b[420];
  double age = 0;
  Under(a, "a.txt");
  Under(b, "b.txt");
  EXPECT(Write(a, "abc"));
  EXPECT(KivCopyNoBuffering(a, KIV_ZERO_ENDED, b, KIV_ZERO_ENDED) == KIV_OK);
  EXPECT(KivComparaFisiere(a, KIV_ZERO_ENDED, b, KIV_ZERO_ENDED) == 1);
  EXPECT(Write(b, "abd") && KivComparaFisiere(a, KIV_ZERO_ENDED, b, KIV_ZERO_ENDED) == 0);
  EXPECT(KivSalveazaFisier(b, KIV_ZERO_ENDED, "abc", 3) == KIV_OK);
  EXPECT(KivComparaFisiere(a, KIV_ZERO_ENDED, b, KIV_ZERO_ENDED) == 1);
  EXPECT(KivSalveazaFisier(root, KIV_ZERO_ENDED, "abc", 3) == -KIV_ERROR_SYSTEM);
  EXPECT(KivDimensiuneFisier(b, KIV_ZERO_ENDED) == 3 && KivIsFileReadOnly(b, KIV_ZERO_ENDED) == 0);
  EXPECT(KivFileAgeByName(b, KIV_ZERO_ENDED, &age) == KIV_OK && age > 45000);
  EXPECT(KivFileAgeByName(b, KIV_ZERO_ENDED, NULL) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivForceDelete(b, KIV_ZERO_ENDED) == 1 && KivForceDelete(b, KIV_ZERO_ENDED) == 0);
  EXPECT(KivDimensiuneFisier(b, KIV_ZERO_ENDED) == 0 && KivIsFileReadOnly(b, KIV_ZERO_ENDED) == 1);
  EXPECT(KivFileAgeByName(b, KIV_ZERO_ENDED, &age) == KIV_OK && age == -1.0);
  EXPECT(KivComparaFisiere(a, KIV_ZERO_ENDED, b, KIV_ZERO_ENDED) == -KIV_ERROR_SYSTEM);
  EXPECT(KivCopyNoBuffering("none", KIV_ZERO_ENDED, b, KIV_ZERO_ENDED) == -KIV_ERROR_GENERAL);
  EXPECT(LastMessageIs("Nu pot deschide none"));
}

static KivLength FilesBelow(const char* path, int32_t maxDepth) {
  static const char* const extensions[] = {"TXTx", "*"};
  static const size_t lengths[] = {3, 1};
  KivStringList* list = KivStringListNew();
  KivLength all = 0;
  KivLength below = 0;
  EXPECT(KivInitFileList(path, KIV_ZERO_ENDED, extensions, lengths, 1, list) == KIV_OK);
  all = KivStringListCount(list);
  EXPECT(KivInitFileListMaxDepth(path, KIV_ZERO_ENDED, extensions + 1, NULL, 1, maxDepth, list) == KIV_OK);
  below = KivStringListCount(list) - all;
  EXPECT(KivInitFileList(path, KIV_ZERO_ENDED, NULL, NULL, 1, list) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivInitFileList(path, KIV_ZERO_ENDED, NULL, NULL, 0, NULL) == -KIV_ERROR_ARGUMENT);
  KivStringListFree(list);
  return all * 10 + below;
}

static char caption[500];
static int repaints;

static KivLength Caption(void* context, KivControl* label, char* text, size_t capacity) {
  (void)context;
  (void)label;
  if (capacity > strlen(caption)) {
    strcpy(text, caption);
  }
  return (KivLength)strlen(caption);
}

static void SetCaption(void* context, KivControl* label, const char* text, size_t length) {
  (void)context;
  (void)label;
  length = length < sizeof caption ? length : sizeof caption - 1;
  memcpy(caption, text, length);
  caption[length] = '\0';
}

static void Repaint(void* context, KivControl* label) {
  (void)context;
  (void)label;
  ++repaints;
}

static void Trees(void) {
  static const char* const extensions[] = {"txt"};
  Tool label = ToolMake(KIV_CONTROL_LABEL, "lbl", "TLabel");
  Tool form = ToolMake(KIV_CONTROL_FORM, "frm", "TForm");
  EXPECT(FilesBelow(root, 0) == 11);
  Under(other, "copie");
  EXPECT(KivRecursiveCopyWithExt(root, KIV_ZERO_ENDED, other, KIV_ZERO_ENDED, extensions, NULL, 1, ToolControl(&label),
                                 5000) == KIV_OK);
  EXPECT(strstr(caption, "a.txt") != NULL && repaints == 1);
  EXPECT(FilesBelow(root, 0) == 21 && FilesBelow(other, 0) == 11);
  EXPECT(KivRecursiveDelete(other, KIV_ZERO_ENDED) == KIV_OK && FilesBelow(root, 5) == 11);
  EXPECT(KivRecursiveCopyWithExtSkipFolders(root, KIV_ZERO_ENDED, other, KIV_ZERO_ENDED, extensions, NULL, 1, NULL,
                                            root, KIV_ZERO_ENDED, 350) == KIV_OK);
  EXPECT(FilesBelow(other, 0) == 0);
  EXPECT(KivRecursiveCopyWithExtSkipFolders(root, KIV_ZERO_ENDED, other, KIV_ZERO_ENDED, extensions, NULL, 1, NULL, "",
                                            0, 350) == KIV_OK);
  EXPECT(FilesBelow(other, 0) == 11);
  EXPECT(KivRecursiveCopyWithExt(root, KIV_ZERO_ENDED, other, KIV_ZERO_ENDED, extensions, NULL, 1, ToolControl(&form),
                                 0) == -KIV_ERROR_CAST);
}

/* What a watcher has been told. */
static struct {
  int files;
  int folders;
  int failures;
  int bytes;
  int32_t code;
  KivStatus answer;
} told;

static KivStatus ToldFile(void* context, const char* path, size_t length, uint64_t bytes) {
  EXPECT(context == &told && length == strlen(path));
  ++told.files;
  told.bytes += (int)bytes;
  return told.answer;
}

static KivStatus ToldFolder(void* context, const char* path, size_t length) {
  EXPECT(context == &told && length == strlen(path));
  ++told.folders;
  return told.answer;
}

static KivStatus ToldFailure(void* context, const char* path, size_t length, const char* message, size_t messageLength,
                             int32_t code) {
  EXPECT(context == &told && length == strlen(path));
  EXPECT(messageLength > length && strstr(message, "RecursiveDelete: ") == message);
  ++told.failures;
  told.code = code;
  return told.answer;
}

static void Watchers(void) {
  KivTreeWatcher watcher = {sizeof watcher, &told, ToldFile, ToldFolder, ToldFailure};
  KivTreeWatcher silent = {sizeof silent, NULL, NULL, NULL, NULL};
  KivTreeSize size = {0, 0, 0};
  Under(other, "copie");
  EXPECT(KivMeasureTree(other, KIV_ZERO_ENDED, &size) == KIV_OK);
  EXPECT(size.files == 1 && size.folders == 1 && size.bytes == 3);
  EXPECT(KivMeasureTree(other, KIV_ZERO_ENDED, NULL) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivWatchTrees(&watcher) == KIV_OK);
  told.answer = -1;
  EXPECT(KivMeasureTree(other, KIV_ZERO_ENDED, &size) == -KIV_ERROR_GENERAL && told.folders == 1 && told.files == 0);
  EXPECT(KivLastSystemCode() == 0);
  told.answer = KIV_OK;
  EXPECT(KivRecursiveDelete(other, KIV_ZERO_ENDED) == KIV_OK && KivRecursiveDelete(other, KIV_ZERO_ENDED) == KIV_OK);
  EXPECT(told.files == 1 && told.bytes == 3 && told.folders == 2 && told.failures == 1 && told.code == 2);
  EXPECT(KivMeasureTree(other, KIV_ZERO_ENDED, &size) == -KIV_ERROR_SYSTEM && KivLastSystemCode() == 2);
  EXPECT(KivWatchTrees(&silent) == KIV_OK && KivRecursiveDelete(other, KIV_ZERO_ENDED) == KIV_OK);
  silent.size = 1;
  EXPECT(KivWatchTrees(&silent) == -KIV_ERROR_ARGUMENT);
  EXPECT(KivWatchTrees(NULL) == KIV_OK && KivRecursiveDelete(other, KIV_ZERO_ENDED) == KIV_OK && told.failures == 1);
}

void FilesTest(void) {
  static ToolScreen screen;
  KivHostTable table = ToolkitTable(&screen);
  char name[300];
  EXPECT(KivReadWindowsTempPath(root, sizeof root - 50) > 0);
  EXPECT(KivSetTempFilePath(root, KIV_ZERO_ENDED) == KIV_OK);
  strcpy(other, root);
  EXPECT(KivGetNewTempFileName("kivtools-c", KIV_ZERO_ENDED, "d", 1, name, sizeof name) > 0);
  EXPECT(KivSetTempFilePath(other, KIV_ZERO_ENDED) == KIV_OK); /* which the name has taken its separator from */
  strcpy(root, name);
  /* A copy of nothing makes the folder. */
  EXPECT(KivRecursiveCopyWithExt("none", KIV_ZERO_ENDED, root, KIV_ZERO_ENDED, NULL, NULL, 0, NULL, 0) == KIV_OK);
  strcat(root, "/");
  table.caption = Caption;
  table.setCaption = SetCaption;
  table.repaint = Repaint;
  EXPECT(KivHostInstall(&table) == KIV_OK);
  SingleFiles();
  Trees();
  Watchers();
  EXPECT(KivHostRemove() == KIV_OK);
  EXPECT(KivRecursiveDelete(root, KIV_ZERO_ENDED) == KIV_OK && FilesBelow(root, 5) == 0);
}
