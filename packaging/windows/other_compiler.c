/* A program for which there is no C library: what it needs comes through the import library. It ends with 0 if the sum
   in words is right. */
#include <kivtools/kiv.h>

int _fltused; /* the compiler's mark of floating point, which its own library would have */

int __stdcall Start(void) {
  static const char kExpected[] = "DOUASPREZECE LEI";
  char text[64];
  unsigned i;
  if (KivInLitereCurrency(120000, text, sizeof text) != sizeof kExpected - 1) {
    return 1;
  }
  for (i = 0; i < sizeof kExpected; ++i) {
    if (text[i] != kExpected[i]) {
      return 2;
    }
  }
  return 0;
}
