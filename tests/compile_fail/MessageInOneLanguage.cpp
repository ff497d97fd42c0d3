// reason: invalid initialization of reference | no matching function for call to 'Say'
#include "apps/kivtools/Language.h"

kivtools::Said Message() {
#ifdef MUST_NOT_COMPILE
  return kivtools::Say("done");
#else
  return kivtools::Say({"done", "gata"});
#endif
}
