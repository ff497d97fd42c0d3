/* For the tests of the C interface: C11, as hosts of other compilers see it. Each file holds one family and a function
   of the file's name, which Main.c calls. */
#ifndef KIVTOOLS_TESTS_C_EXPECT_H
#define KIVTOOLS_TESTS_C_EXPECT_H

#include <stdio.h>
#include <string.h>

#include "kivtools/kiv.h"

extern int failures;
extern char buffer[200];

#define EXPECT(condition)                                                   \
  do {                                                                      \
    if (!(condition)) {                                                     \
      printf("%s:%d: does not hold: %s\n", __FILE__, __LINE__, #condition); \
      ++failures;                                                           \
    }                                                                       \
  } while (0)

/* That a call which writes into `buffer` gives this text. Example: GIVES("DOUAZECI", KivInLitere, 20); */
#define GIVES(expected, function, ...) \
  EXPECT(Gave(function(__VA_ARGS__, buffer, sizeof buffer), expected) && "in " #function)

/* The text just written, with the length that the call returned. */
int Gave(KivLength length, const char* expected);

int LastMessageIs(const char* expected);

#endif
