/// @file
/// The unit WideTools.
#pragma once

#include "kivtools/WideTools/CodePages.h"
#include "kivtools/WideTools/Grades.h"
#include "kivtools/WideTools/ScaledNumbers.h"
