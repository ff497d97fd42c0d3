// What RoCodeToDate accepts is a whole day that its own code reads back.
#include "fuzz/Property.h"
#include "kivtools/WinUtil/DateText.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const kiv::TextView text(reinterpret_cast<const char*>(bytes), size);
  try {
    const kiv::DateTime date = kiv::RoCodeToDate(text);
    REQUIRE(kiv::RoCodeToDate(kiv::DateToRoCode(date)) == date);
  } catch (const kiv::ConversionError&) {
  } catch (const kiv::DateEncodingError&) {
  }
  return 0;
}
