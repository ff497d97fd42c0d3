/* Runs the tests of all families; which those are, the build finds. */
#include "Expect.h"

int failures = 0;
char buffer[200];

int Gave(KivLength length, const char* expected) {
  const int equal = length == (KivLength)strlen(expected) && strcmp(buffer, expected) == 0;
  if (!equal) {
    printf("gave \"%s\" (%ld) instead of \"%s\"\n", buffer, (long)length, expected);
  }
  return equal;
}

int LastMessageIs(const char* expected) {
  char message[200];
  KivLastErrorMessage(message, sizeof message);
  return strcmp(message, expected) == 0;
}

#define KIV_C_TEST(name) void name(void);
#include "c_tests.inc"
#undef KIV_C_TEST

int main(void) {
  EXPECT(KivLastError() == KIV_OK && KivPage1250Ok() == 0 && KivPage1250Replace() == 0);
  EXPECT(KivInitialize() == KIV_OK);
#define KIV_C_TEST(name) name();
#include "c_tests.inc"
  EXPECT(KivFinalize() == KIV_OK);
  printf("%d failures\n", failures);
  return failures != 0;
}
