// What every harness shares: a property check that stops the run with the
// failed condition, so libFuzzer records the input and a replay test fails.
#pragma once

#include <cstdio>
#include <cstdlib>

#define FUZZ_CHECK(cond)                                                               \
  do {                                                                                 \
    if (!(cond)) {                                                                     \
      std::fprintf(stderr, "%s:%d: property failed: %s\n", __FILE__, __LINE__, #cond); \
      std::abort();                                                                    \
    }                                                                                  \
  } while (0)
