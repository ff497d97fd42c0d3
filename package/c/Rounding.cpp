#include "kivtools/c/Rounding.h"

#include <limits>

#include "kivtools/WinUtil/Rounding.h"
#include "package/c/Abi.h"

using namespace kiv::c;

extern "C" {

KivStatus KivSmartRound(double value, double* result) {
  return Run([=] { KIV_REQUIRED(result) = kiv::SmartRound(value); });
}

KivStatus KivSmartRoundTo(double value, int32_t digit, double* result) {
  return Run([=] {
    double& rounded = KIV_REQUIRED(result);
    using Digits = std::numeric_limits<std::int8_t>;
    if (digit < Digits::min() || digit > Digits::max()) {
      throw ArgumentError("digit " + std::to_string(digit) + " nu este in -128..127");
    }
    rounded = kiv::SmartRoundTo(value, static_cast<std::int8_t>(digit));
  });
}

}  // extern "C"
