#pragma once

#include <optional>
#include <utility>
#include <vector>

#include "kivtools/c/Dataset.h"
#include "kivtools/dataset/Dataset.h"

// What the handles of datasets lead to.

struct KivDataset {
  kiv::Dataset dataset;
  std::vector<kiv::Mark> marks{};
  /// The open row and what was set in it.
  struct Open {
    std::uint32_t row;
    std::vector<std::pair<std::size_t, kiv::Value>> values;
  };
  std::optional<Open> open{};
};

struct KivDelta {
  kiv::Delta delta;
};
