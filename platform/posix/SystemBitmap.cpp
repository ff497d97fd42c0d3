#include "kivtools/Bitmap.h"

namespace kiv {

Handle ToSystemBitmap(const Bitmap& /*bitmap*/) {
  throw Error("ToSystemBitmap: sistemul nu are bitmapuri proprii");
}

Bitmap FromSystemBitmap(Handle /*handle*/) {
  throw Error("FromSystemBitmap: sistemul nu are bitmapuri proprii");
}

}  // namespace kiv
