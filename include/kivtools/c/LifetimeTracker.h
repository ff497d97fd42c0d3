/**
 * @file
 * The tracker that finds objects used after their release. See kivtools/UDepanarePointer.h for the errors; their text
 * is what KivLastErrorMessage gives. It works between KivInitialize and KivFinalize, from one thread.
 */
#ifndef KIVTOOLS_C_LIFETIMETRACKER_H
#define KIVTOOLS_C_LIFETIMETRACKER_H

#include "kivtools/c/Base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Reports an object's creation. Fails for one that is alive. Example: 1 for `KivDoNewInstance(p, "TBuffer", 7)`. */
KIV_API KivAnswer KivDoNewInstance(const void* address, const char* className, size_t length);

/** Reports an object's release. Fails for one never reported or released before. Example: 1. */
KIV_API KivAnswer KivDoFreeInstance(const void* object);

/** Whether an object was reported and is not released. Example: 0 after KivDoFreeInstance. */
KIV_API KivAnswer KivIsValid(const void* object);

/** 1 for an object that was reported and is not released; fails for any other. Example: 1 after KivDoNewInstance. */
KIV_API KivAnswer KivIsValidOrBust(const void* object);

/** Notes that an object must not be destroyed for now; null is ignored. Example: 0. */
KIV_API KivStatus KivLockObjectDestruction(const void* object);

/** Takes that note back; null is ignored. Fails for an object that has none. Example: 0. */
KIV_API KivStatus KivUnLockObjectDestruction(const void* object);

/** Adds a caller, as any text that helps to find the place, to be shown by later errors about the object. Example: 0.
 */
KIV_API KivStatus KivRecordCaller(const void* object, const char* caller, size_t length);

#ifdef __cplusplus
}
#endif

#endif
