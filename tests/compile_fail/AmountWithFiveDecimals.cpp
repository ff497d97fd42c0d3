// reason: an amount has four decimals at most
#include "kivtools/Currency.h"
using namespace kiv::literals;

#ifdef MUST_NOT_COMPILE
kiv::Currency amount = 1.23456_lei;
#else
kiv::Currency amount = 1.2345_lei;
#endif
