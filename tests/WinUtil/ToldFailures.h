#pragma once

#include <string>

#include "kivtools/WinUtil/TreeWatcher.h"

namespace kiv {

/// What tree operations of this thread could not do while this object lives: each path with the system's code behind
/// it.
class ToldFailures : public TreeWatcher {
 public:
  void OnFailure(TextView path, const OsError& error) override {
    told.push_back(Text(path) + " " + std::to_string(error.Code()));
  }

  StringList told;
};

}  // namespace kiv
