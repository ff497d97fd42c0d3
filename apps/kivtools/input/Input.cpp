#include "apps/kivtools/input/Input.h"

#include "apps/kivtools/system/Console.h"
#include "apps/kivtools/system/Paths.h"

namespace kivtools {

Input::Input(const std::string& name)
    : stream_(name == "-" ? InputStream::Standard() : InputStream::Open(PathFromUtf8(name))),
      progress_(stream_.Size(), name != "-" || !TerminalWidth(StandardStream::Input)) {}

ByteSource Input::Source() {
  return [this](char* into, std::size_t capacity) {
    const std::size_t count = stream_.Read(into, capacity);
    progress_.Advance(count);
    return count;
  };
}

}  // namespace kivtools
