#pragma once

#include "kivtools/Types.h"
#include "kivtools/c/StringList.h"

/// The list behind the C interface's handle.
struct KivStringList {
  kiv::StringList items;
};
