#include "platform/NameCase.h"

#include <algorithm>

namespace kiv::platform {

SystemName::Letter LowerLetter(SystemName::Letter letter) noexcept {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + ('a' - 'A')) : letter;
}

Text LowerPath(TextView path) {
  Text lower(path);
  std::ranges::transform(lower, lower.begin(), LowerLetter);
  return lower;
}

}  // namespace kiv::platform
