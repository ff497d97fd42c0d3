#include "core/BitmapFile.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <vector>

#include "core/BitmapMaker.h"

namespace kiv::bmpfile {
namespace {

constexpr std::size_t kFileHeader = 14;
constexpr std::size_t kOldHeader = 12;   // the first form, with sizes of 16 bits
constexpr std::size_t kInfoHeader = 40;  // what all later forms begin with
constexpr std::size_t kMasks = 12;
constexpr std::size_t kPixels = kFileHeader + kInfoHeader;
constexpr std::size_t kPiece = 65536;

constexpr std::uint32_t kPlain = 0;
constexpr std::uint32_t kWithMasks = 3;

std::uint32_t Get16(const std::uint8_t* bytes) {
  return bytes[0] | std::uint32_t{bytes[1]} << 8U;
}

std::uint32_t Get32(const std::uint8_t* bytes) {
  return Get16(bytes) | Get16(bytes + 2) << 16U;
}

void Put(std::uint8_t* bytes, std::uint32_t number) {
  for (unsigned i = 0; i < 4; ++i) {
    bytes[i] = static_cast<std::uint8_t>(number >> 8 * i);
  }
}

std::array<std::uint8_t, kPixels> HeaderOf(const Picture& picture, std::uint64_t imageBytes) {
  constexpr std::uint32_t kDotsPerMetre = 3780;  // 96 to the inch
  std::array<std::uint8_t, kPixels> header{};
  header[0] = 'B';
  header[1] = 'M';
  Put(&header[2], static_cast<std::uint32_t>(kPixels + imageBytes));
  Put(&header[10], kPixels);
  Put(&header[14], kInfoHeader);
  Put(&header[18], static_cast<std::uint32_t>(picture.width));
  Put(&header[22], static_cast<std::uint32_t>(picture.height));
  header[26] = 1;
  header[28] = picture.format == PixelFormat::Rgb24 ? 24 : 32;
  Put(&header[34], static_cast<std::uint32_t>(imageBytes));
  Put(&header[38], kDotsPerMetre);
  Put(&header[42], kDotsPerMetre);
  return header;
}

/// What the file says of its picture.
struct Layout {
  std::int32_t width = 0;
  std::int32_t height = 0;
  bool topDown = false;
  std::uint32_t bits = 0;
  std::uint64_t pixels = 0;    ///< where the first row begins
  std::uint64_t rowBytes = 0;  ///< of a row in the file, with what fills it up
  bool sixBitGreen = false;    ///< of pixels of 16 bits
  std::array<std::uint8_t, std::size_t{3} * 256> palette{};
};

class HeaderReader {
 public:
  HeaderReader(std::uint64_t size, TextView context, const Source& source)
      : size_(size), context_(context), source_(source) {}

  Layout Read() {
    std::array<std::uint8_t, kFileHeader + 4> start{};
    if (source_(0, start) < start.size() || start[0] != 'B' || start[1] != 'M') {
      Refuse("nu este un fisier BMP");
    }
    layout_.pixels = Get32(&start[10]);
    header_ = Get32(&start[14]);
    if (header_ != kOldHeader && (header_ < kInfoHeader || header_ > kPiece)) {
      Refuse("nu este un fisier BMP");
    }
    ReadSizes();
    CheckRoom();
    ReadPalette();
    return layout_;
  }

  [[noreturn]] void Refuse(const Text& why) const { throw Error(Text(context_) + ": " + why); }
  [[noreturn]] void RefuseShort() const { Refuse("fisierul BMP este trunchiat"); }

 private:
  void ReadExactly(std::uint64_t offset, std::span<std::uint8_t> buffer) const {
    if (source_(offset, buffer) < buffer.size()) {
      RefuseShort();
    }
  }

  void ReadSizes() {
    std::array<std::uint8_t, kInfoHeader + kMasks> header{};
    const bool old = header_ == kOldHeader;
    ReadExactly(kFileHeader, std::span(header).first(old ? kOldHeader : kInfoHeader));
    if (old) {
      layout_.width = static_cast<std::int32_t>(Get16(&header[4]));
      layout_.height = static_cast<std::int32_t>(Get16(&header[6]));
      layout_.bits = Get16(&header[10]);
    } else {
      layout_.width = static_cast<std::int32_t>(Get32(&header[4]));
      layout_.height = static_cast<std::int32_t>(Get32(&header[8]));
      layout_.bits = Get16(&header[14]);
      compression_ = Get32(&header[16]);
      coloursUsed_ = Get32(&header[32]);
    }
    layout_.topDown = layout_.height < 0;
    if (layout_.width < 0 || layout_.height == std::numeric_limits<std::int32_t>::min()) {
      Refuse("dimensiune imposibila");
    }
    layout_.height = std::abs(layout_.height);
    if (compression_ == kWithMasks) {
      ReadExactly(kPixels, std::span(header).subspan(kInfoHeader));
    }
    CheckKind(&header[kInfoHeader]);
  }

  /// Only what other programs write: all channels as they are here, or five bits each, or six for green.
  void CheckKind(const std::uint8_t* masks) {
    const auto has = [masks](std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
      return Get32(masks) == red && Get32(masks + 4) == green && Get32(masks + 8) == blue;
    };
    const std::uint32_t bits = layout_.bits;
    bool known = false;
    if (compression_ == kPlain) {
      known = bits == 1 || bits == 4 || bits == 8 || bits == 16 || bits == 24 || bits == 32;
    } else if (compression_ == kWithMasks && bits == 16) {
      layout_.sixBitGreen = has(0xF800, 0x07E0, 0x001F);
      known = layout_.sixBitGreen || has(0x7C00, 0x03E0, 0x001F);
    } else if (compression_ == kWithMasks && bits == 32) {
      known = has(0xFF0000, 0x00FF00, 0x0000FF);
    }
    if (!known) {
      Refuse("fel de BMP necunoscut: " + std::to_string(bits) + " biti, compresia " + std::to_string(compression_));
    }
  }

  void CheckRoom() {
    const auto width = static_cast<std::uint64_t>(layout_.width);
    const auto height = static_cast<std::uint64_t>(layout_.height);
    layout_.rowBytes = (width * layout_.bits + 31) / 32 * 4;
    if (width == 0 || height == 0) {
      return;
    }
    // What fills the last row up may be missing. No overflow: rowBytes is below 2^34, height below 2^31 by then.
    const std::uint64_t used = (width * layout_.bits + 7) / 8;
    if (layout_.rowBytes > size_ || height > size_ / layout_.rowBytes + 1 ||
        layout_.pixels + (height - 1) * layout_.rowBytes + used > size_) {
      RefuseShort();
    }
  }

  /// Colours that the file does not have are black.
  void ReadPalette() {
    if (layout_.bits > 8) {
      return;
    }
    const std::size_t entry = header_ == kOldHeader ? 3 : 4;
    const std::uint32_t most = 1U << layout_.bits;
    const std::uint32_t count = coloursUsed_ == 0 ? most : std::min(coloursUsed_, most);
    std::array<std::uint8_t, std::size_t{4} * 256> entries{};
    const std::size_t got = source_(kFileHeader + header_, std::span(entries).first(entry * count));
    for (std::size_t i = 0; i < got / entry; ++i) {
      std::copy_n(&entries[entry * i], 3, &layout_.palette[3 * i]);
    }
  }

  std::uint64_t size_;
  TextView context_;
  const Source& source_;
  std::uint32_t header_ = 0;
  std::uint32_t compression_ = kPlain;
  std::uint32_t coloursUsed_ = 0;
  Layout layout_;
};

std::uint8_t Widened(std::uint32_t channel, unsigned bits) {
  return static_cast<std::uint8_t>(channel << (8 - bits) | channel >> (2 * bits - 8));
}

void DecodeIndexed(const Layout& layout, const std::uint8_t* in, std::uint8_t* out) {
  for (std::uint32_t x = 0; x < static_cast<std::uint32_t>(layout.width); ++x, out += 3) {
    const std::uint64_t bit = std::uint64_t{x} * layout.bits;
    const std::uint32_t index = in[bit / 8] >> (8 - layout.bits - bit % 8) & ((1U << layout.bits) - 1);
    std::memcpy(out, &layout.palette[std::size_t{3} * index], 3);
  }
}

void Decode16(const Layout& layout, const std::uint8_t* in, std::uint8_t* out) {
  const unsigned green = layout.sixBitGreen ? 6 : 5;
  for (std::int32_t x = 0; x < layout.width; ++x, in += 2, out += 3) {
    const std::uint32_t pixel = Get16(in);
    out[0] = Widened(pixel & 0x1FU, 5);
    out[1] = Widened(pixel >> 5U & ((1U << green) - 1), green);
    out[2] = Widened(pixel >> (5 + green) & 0x1FU, 5);
  }
}

void DecodeRow(const Layout& layout, const std::uint8_t* in, std::uint8_t* out) {
  if (layout.bits <= 8) {
    DecodeIndexed(layout, in, out);
  } else if (layout.bits == 16) {
    Decode16(layout, in, out);
  } else {
    std::memcpy(out, in, static_cast<std::size_t>(layout.width) * layout.bits / 8);
  }
}

}  // namespace

void Write(const Picture& picture, TextView context, const Sink& sink) {
  const auto width = static_cast<std::uint64_t>(picture.width);
  const auto height = static_cast<std::uint64_t>(picture.height);
  const std::uint64_t rowBytes = BitmapMaker::StrideOf(width, picture.format);
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint32_t>::max() - kPixels;
  if (height > 0 && rowBytes > kMost / height) {
    throw Error(Text(context) + ": un fisier BMP nu poate avea 4 GiB");
  }
  sink(HeaderOf(picture, rowBytes * height));
  const auto used = static_cast<std::size_t>(width * (picture.format == PixelFormat::Rgb24 ? 3 : 4));
  std::vector<std::uint8_t> piece;
  for (std::int32_t y = picture.height - 1; used > 0 && y >= 0; --y) {
    const std::uint8_t* const row = picture.top + y * picture.stride;
    piece.insert(piece.end(), row, row + used);
    piece.resize(piece.size() + static_cast<std::size_t>(rowBytes) - used);
    if (piece.size() >= kPiece || y == 0) {
      sink(piece);
      piece.clear();
    }
  }
}

Bitmap Read(std::uint64_t size, TextView context, const Source& source) {
  HeaderReader reader(size, context, source);
  const Layout layout = reader.Read();
  Bitmap bitmap(layout.width, layout.height, layout.bits == 32 ? PixelFormat::Rgb32 : PixelFormat::Rgb24);
  if (layout.width == 0 || layout.height == 0) {
    return bitmap;
  }
  const auto rowBytes = static_cast<std::size_t>(layout.rowBytes);
  const std::size_t used = (static_cast<std::size_t>(layout.width) * layout.bits + 7) / 8;
  const auto height = static_cast<std::size_t>(layout.height);
  const std::size_t rowsAtOnce = std::min(std::max<std::size_t>(kPiece / rowBytes, 1), height);
  std::vector<std::uint8_t> rows(rowBytes * rowsAtOnce);
  for (std::size_t done = 0; done < height; done += rowsAtOnce) {
    const std::size_t count = std::min(rowsAtOnce, height - done);
    const std::size_t got =
        source(layout.pixels + std::uint64_t{done} * rowBytes, std::span(rows).first(rowBytes * count));
    if (got < rowBytes * (count - 1) + used) {
      reader.RefuseShort();
    }
    for (std::size_t i = 0; i < count; ++i) {
      const auto y = static_cast<std::int32_t>(layout.topDown ? done + i : height - 1 - done - i);
      DecodeRow(layout, rows.data() + rowBytes * i, bitmap.ScanLine(y));
    }
  }
  return bitmap;
}

}  // namespace kiv::bmpfile
