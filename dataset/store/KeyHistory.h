#pragma once

#include "dataset/store/KeyIndex.h"

namespace kiv::store {

/// Throws Error, naming the key, where taking changes back one by one would at some point give two rows the same key.
/// `present` is the index of the rows as they are.
void CheckKeyHistory(const Contents& contents, const KeyIndex& present);

/// The same for the tickets of a delta, whose changes have no order: all original keys differ.
void CheckOriginalKeys(const Contents& contents, const KeyIndex& present);

}  // namespace kiv::store
