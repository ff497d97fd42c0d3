#pragma once

#include <cstdio>
#include <cstdlib>

/// Stops the fuzzer, naming the property, where it does not hold.
#define REQUIRE(property)                                                                \
  do {                                                                                   \
    if (!(property)) {                                                                   \
      std::fprintf(stderr, "%s:%d: does not hold: %s\n", __FILE__, __LINE__, #property); \
      std::abort();                                                                      \
    }                                                                                    \
  } while (false)
