// reason: no matching function | no matching conversion
#include "apps/kivtools/InputError.h"

void Refuse() {
#ifdef MUST_NOT_COMPILE
  throw kivtools::InputError(std::string("it is a folder"));
#else
  throw kivtools::InputError(kivtools::Say({"it is a folder", "este un dosar"}));
#endif
}
