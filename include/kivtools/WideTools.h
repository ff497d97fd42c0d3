/// @file
/// The unit WideTools.
#pragma once

#include "kivtools/WideTools/ScaledNumbers.h"
