// reason: PlacesDifferFromTheValuesGiven
#include "apps/kivtools/Language.h"

kivtools::Said Message() {
#ifdef MUST_NOT_COMPILE
  return kivtools::Say({"{0} is a folder", "{1} este un dosar"}, "a");
#else
  return kivtools::Say({"{0} is a folder", "{0} este un dosar"}, "a");
#endif
}
