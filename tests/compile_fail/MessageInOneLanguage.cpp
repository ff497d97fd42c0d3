// reason: invalid initialization of reference
#include "apps/kivtools/Language.h"

kivtools::Said Message() {
#ifdef MUST_NOT_COMPILE
  return kivtools::Say("done");
#else
  return kivtools::Say({"done", "gata"});
#endif
}
