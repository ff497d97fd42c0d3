#pragma once

#include "kivtools/Host.h"

namespace kiv {

/// A colour as red, green and blue: what the host says for one of the system's, which have a top byte. For others the
/// host is not asked, so that operations on them may run on any thread.
inline Colour ResolvedColour(Colour colour) {
  return colour <= 0x00FFFFFFU ? colour : host::Current().GetColours().Resolve(colour) & 0x00FFFFFFU;
}

}  // namespace kiv
