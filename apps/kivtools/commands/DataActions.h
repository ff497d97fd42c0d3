#pragma once

#include <span>
#include <string_view>

#include "apps/kivtools/Command.h"

namespace kivtools {

/// What "kivtools data ACTION" can be; all of them share the command's table of options.
struct DataAction {
  std::string_view name;
  std::size_t values;  ///< how many it takes, ACTION included
  std::span<const std::string_view> options;
  int (*run)(Session&, const Arguments&);
};

extern const DataAction kDataConvert;
extern const DataAction kDataDiff;

}  // namespace kivtools
