// reason: the literal has a letter outside Windows-1250
#include "kivtools/Text.h"
using namespace kiv::literals;

#ifdef MUST_NOT_COMPILE
kiv::TextView text = "ñ"_ro;
#else
kiv::TextView text = "ń"_ro;
#endif
