#pragma once

#include <cstddef>
#include <string_view>

#include "kivtools/Types.h"

/// What a test asks the system about its own process.
namespace kiv::test {

/// Whether a library whose file is called `fileName` (ASCII) is mapped into this process.
bool IsLoaded(std::string_view fileName);

/// The system's handle of the module that holds the code at `address`: where it begins in memory.
Handle ModuleOf(const void* address);

/// The bytes of the C run-time's heap that are in use.
std::size_t HeapInUse();

}  // namespace kiv::test
