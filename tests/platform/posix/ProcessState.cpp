#include "platform/ProcessState.h"

#include <malloc.h>

#include <fstream>
#include <string>

namespace kiv::test {

bool IsLoaded(std::string_view fileName) {
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    if (line.find(fileName) != std::string::npos) {
      return true;
    }
  }
  return false;
}

std::size_t HeapInUse() {
  return mallinfo2().uordblks;
}

}  // namespace kiv::test
