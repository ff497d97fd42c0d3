#pragma once

#include "kivtools/Host.h"

namespace kiv {

/// Shows a path on a label, no wider than `maxWidth` pixels: whole, or as many of its last folders as fit behind
/// "...\", or the end of its name behind "...".
void ShowFitted(host::Label& label, TextView path, std::int32_t maxWidth);

}  // namespace kiv
