#include "Expect.h"
#include "kivtools/Bitmap.h"

namespace kiv {
namespace {

TEST(SystemBitmap, IsNothingThatThisSystemHas) {
  ExpectError<Error>([] { static_cast<void>(ToSystemBitmap(Bitmap())); },
                     "ToSystemBitmap: sistemul nu are bitmapuri proprii");
  ExpectError<Error>([] { static_cast<void>(FromSystemBitmap(0)); },
                     "FromSystemBitmap: sistemul nu are bitmapuri proprii");
}

}  // namespace
}  // namespace kiv
