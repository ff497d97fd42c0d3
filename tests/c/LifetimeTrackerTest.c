#include "Expect.h"

void LifetimeTrackerTest(void) {
  EXPECT(KivDoNewInstance(buffer, "Tampon", KIV_ZERO_ENDED) == 1 && KivIsValid(buffer) == 1);
  EXPECT(KivLockObjectDestruction(buffer) == KIV_OK && KivUnLockObjectDestruction(buffer) == KIV_OK);
  EXPECT(KivUnLockObjectDestruction(buffer) == -KIV_ERROR_GENERAL);
  EXPECT(KivIsValidOrBust(buffer) == 1 && KivDoFreeInstance(buffer) == 1 && KivIsValid(buffer) == 0);
  EXPECT(KivIsValidOrBust(buffer) == -KIV_ERROR_GENERAL);
  EXPECT(KivRecordCaller(buffer, "x.c:1", KIV_ZERO_ENDED) == KIV_OK);
  EXPECT(KivDoFreeInstance(buffer) == -KIV_ERROR_GENERAL);
  EXPECT(LastMessageIs("Dai FreeInstance de 2 ori! Apelul anterior a venit de la adresa x.c:1"));
}
