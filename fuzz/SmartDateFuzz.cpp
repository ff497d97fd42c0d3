// What SmartStringToDateTime reads has a date that its writer and itself keep; anything else is one of its two errors.
#include <cmath>

#include "fuzz/Property.h"
#include "kivtools/WinUtil/DateArithmetic.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const kiv::TextView text(reinterpret_cast<const char*>(bytes), size);
  try {
    const kiv::DateTime moment = kiv::SmartStringToDateTime(text);
    const kiv::Text written = kiv::DateTimeToSmartStrimg(moment);
    REQUIRE(written.size() == 14 && written[4] == ':' && written[8] == ':');
    REQUIRE(std::trunc(kiv::SmartStringToDateTime(written).Days()) == std::trunc(moment.Days()));
    REQUIRE(moment.Decode().hour <= 15 && moment.Decode().millisecond == 0);
  } catch (const kiv::ConversionError&) {
  } catch (const kiv::DateEncodingError&) {
    REQUIRE(size >= 10);
  }
  return 0;
}
