/* Processes and paths; what they do on each system, their C++ tests say. */
#include "Expect.h"

static int EndsWith(const char* text, const char* end) {
  const size_t length = strlen(text);
  const size_t endLength = strlen(end);
  return length >= endLength && strcmp(text + length - endLength, end) == 0;
}

static void TestPaths(void) {
  char folder[200];
  GIVES("C:\\a\\b", KivRemoveDoubleSlash, "C://a\\\\b", KIV_ZERO_ENDED);
  EXPECT(KivReadWindowsTempPath(buffer, sizeof buffer) > 0);
  strcpy(folder, buffer);
  EXPECT(Gave(KivTempFilePath(buffer, sizeof buffer), folder));
  EXPECT(KivGetMyDocumentsFolder(buffer, sizeof buffer) > 0);
  EXPECT(KivGetDesktopPath(buffer, sizeof buffer) > 0);
  EXPECT(KivGetAppDataFolder(buffer, sizeof buffer) > 0);
  EXPECT(KivDeviceInfo(0, buffer, sizeof buffer) > 0 && strncmp(buffer, "HORZSIZE=", 9) == 0);

  EXPECT(KivSetTempFilePath("no folder", KIV_ZERO_ENDED) == KIV_OK);
  EXPECT(KivGetNewTempFileName("a", 1, "bcd", 2, buffer, sizeof buffer) == 16 && EndsWith(buffer, "a_1.bc"));
  EXPECT(KivConnectionStringForMdb("a\nb", 3, buffer, sizeof buffer) == -KIV_ERROR_GENERAL);
  EXPECT(KivSetTempFilePath(folder, KIV_ZERO_ENDED) == KIV_OK);
}

void ProcessesTest(void) {
  uintptr_t handle = 77;
  TestPaths();
  EXPECT(KivStartProgram("no folder/none", KIV_ZERO_ENDED, "x", 1, &handle) == -KIV_ERROR_SYSTEM && handle == 77);
  EXPECT(KivLastErrorMessage(buffer, sizeof buffer) > 0);
  EXPECT(strncmp(buffer, "StartProgram: no folder/none: ", 30) == 0);
  EXPECT(KivTerminateProgram(0) == 0);
  EXPECT(KivSetPriviledgeForCurrentProcess("SeNone", KIV_ZERO_ENDED) == -KIV_ERROR_SYSTEM);
  EXPECT(KivCreateLogOnToken("nobody", 6, "no domain", 9, NULL, 1, 2, &handle) == -KIV_ERROR_ARGUMENT && handle == 77);
  EXPECT(KivStartProgramAsUser("no folder/none", KIV_ZERO_ENDED, "", 0, 0) == -KIV_ERROR_SYSTEM);
}
