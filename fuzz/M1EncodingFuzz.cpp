// What EncodeM1String gives decodes to the text; any characters decode if their number is a multiple of four.
#include "fuzz/Property.h"
#include "kivtools/WinUtil/M1Encoding.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const kiv::TextView text(reinterpret_cast<const char*>(bytes), size);
  const kiv::Text encoded = kiv::EncodeM1String(text);
  REQUIRE(encoded.find_first_not_of("0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^_`abcdefghijklmnopqrstuvwxyz") ==
          kiv::Text::npos);
  REQUIRE(kiv::DecodeM1String(encoded) == text);
  try {
    REQUIRE(kiv::DecodeM1String(text).size() * 4 == size);
  } catch (const kiv::Error&) {
    REQUIRE(size % 4 != 0);
  }
  return 0;
}
