/// @file
/// What the library asks of the application's user-interface framework.
#pragma once

#include "kivtools/Types.h"

namespace kiv::host {

/// The base of the framework's classes.
class KIV_API Object {
 public:
  virtual ~Object() = default;
  /// The name of the object's class, for messages and lists. Example: "TFormFactura".
  [[nodiscard]] virtual TextView ClassName() const = 0;
};

}  // namespace kiv::host
