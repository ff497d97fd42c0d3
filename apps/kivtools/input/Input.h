#pragma once

#include <string>

#include "apps/kivtools/Output.h"
#include "apps/kivtools/input/BlockReader.h"
#include "apps/kivtools/system/InputStream.h"

namespace kivtools {

/// A file, or standard input by the name "-", with progress shown while it is read.
class Input {
 public:
  /// Throws SystemError, or InputError for a folder.
  explicit Input(const std::string& name);

  /// Its bytes, for as long as this object is there.
  ByteSource Source();

 private:
  InputStream stream_;
  Progress progress_;
};

}  // namespace kivtools
