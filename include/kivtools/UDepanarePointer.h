/// @file
/// A debugging aid for applications: remembers which objects were created and released, by address, and turns the
/// classic mistakes with pointers into errors.
///
/// Only objects that are reported are tracked: a class calls DoNewInstance when an instance is allocated and
/// DoFreeInstance when it is released. kivtools/TrackedInstance.h does so for every class derived from it.
///
/// The tracker lives between Initialize() and Finalize(); outside, every operation throws Error. It is for one thread.
/// Objects are told apart by their whole address and are never read, so that asking about a dead one is safe; ask with
/// the pointer that was reported (a base class of an object may lie at another address than the object).
#pragma once

#include "kivtools/Host.h"
#include "kivtools/Types.h"

namespace kiv {

/// Reports that an object of that class was created at `address`; the address of a released object may be used again.
/// Always true. Throws Error "Apelezi DoNewInstance de 2 ori!" for an object that is alive already.
/// Example: `DoNewInstance(buffer, "TBuffer")`.
KIV_API bool DoNewInstance(const void* address, TextView className);

/// The same for an object of the host framework, which knows its class. Throws Error for null.
/// Example: `DoNewInstance(&form)`.
KIV_API bool DoNewInstance(const host::Object* object);

/// Reports that an object was released. Always true. Throws Error
/// "Dai FreeInstance pentru un obiect care nu exista!" for one never reported and "Dai FreeInstance de 2 ori!" for one
/// released before, followed by " Apelul anterior a venit de la adresa " and the caller if RecordCaller named one.
/// Example: `DoFreeInstance(p)` after `DoNewInstance(p, "TBuffer")`.
KIV_API bool DoFreeInstance(const void* object);

/// Whether an object was reported and is not released.
/// Example: true after `DoNewInstance(p, "TBuffer")`, false after `DoFreeInstance(p)`.
[[nodiscard]] KIV_API bool IsValid(const void* object);

/// True for an object that was reported and is not released. Throws Error for any other: one never reported
/// ("Obiectul pe care-l verifici NU A EXISTAT NICIODATA!!!! (4096)", with the low 32 bits of the address as a signed
/// number), one released by a recorded caller ("Obiectul a fost distrus! Apelul anterior a venit de la adresa
/// 4198400"), one released by an unknown one ("Obiectul nu-i bun si nu pot verifica apelul").
/// Example: `IsValidOrBust(p)` is true between `DoNewInstance(p, "TBuffer")` and `DoFreeInstance(p)`.
KIV_API bool IsValidOrBust(const void* object);

/// Notes that an object must not be destroyed for now; noting it twice changes nothing. Null is ignored. A record only:
/// DoFreeInstance does not consult it. Example: `LockObjectDestruction(p)`.
KIV_API void LockObjectDestruction(const void* object);

/// Takes an object off that record. Null is ignored. Throws Error
/// "Incerci sa deblochezi un obiect care nu a fost in prealabil blocat" for one that is not on it.
/// Example: `UnLockObjectDestruction(p)`; a second one throws.
KIV_API void UnLockObjectDestruction(const void* object);

/// Adds a caller to what is known about a reported object, so that a later error can say where the call before it came
/// from. Any text that helps to find the place will do; of several callers the greatest text is shown. A new creation
/// at the same address forgets it. Throws Error for an object never reported.
///
///     DoFreeInstance(p);
///     RecordCaller(p, "Facturi.cpp:120");
///     IsValidOrBust(p);   // "Obiectul a fost distrus! Apelul anterior a venit de la adresa Facturi.cpp:120"
KIV_API void RecordCaller(const void* object, TextView caller);

/// The same for a code address, such as KIV_CALLER_ADDRESS(); shown as the low 32 bits in decimal, signed.
/// Example: `RecordCaller(p, KIV_CALLER_ADDRESS())`.
KIV_API void RecordCaller(const void* object, const void* caller);

/// Within a function: the address to which it returns, that is the place it was called from.
#define KIV_CALLER_ADDRESS() (__builtin_extract_return_addr(__builtin_return_address(0)))

}  // namespace kiv
