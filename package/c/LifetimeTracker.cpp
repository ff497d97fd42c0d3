#include "kivtools/c/LifetimeTracker.h"

#include "kivtools/UDepanarePointer.h"
#include "package/c/Abi.h"

using namespace kiv::c;

extern "C" {

KivAnswer KivDoNewInstance(const void* address, const char* className, size_t length) {
  return GiveAnswer([=] { return kiv::DoNewInstance(address, KIV_TEXT(className, length)); });
}

KivAnswer KivDoFreeInstance(const void* object) {
  return GiveAnswer([=] { return kiv::DoFreeInstance(object); });
}

KivAnswer KivIsValid(const void* object) {
  return GiveAnswer([=] { return kiv::IsValid(object); });
}

KivAnswer KivIsValidOrBust(const void* object) {
  return GiveAnswer([=] { return kiv::IsValidOrBust(object); });
}

KivStatus KivLockObjectDestruction(const void* object) {
  return Run([=] { kiv::LockObjectDestruction(object); });
}

KivStatus KivUnLockObjectDestruction(const void* object) {
  return Run([=] { kiv::UnLockObjectDestruction(object); });
}

KivStatus KivRecordCaller(const void* object, const char* caller, size_t length) {
  return Run([=] { kiv::RecordCaller(object, KIV_TEXT(caller, length)); });
}

}  // extern "C"
