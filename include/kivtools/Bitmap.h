/// @file
/// A picture in memory: what the fills and the blur of `kivtools/BmpRoutines.h` and the gradients of
/// `kivtools/WinUtil/Colours.h` work on.
///
/// Two threads may use two bitmaps at once, and read the same one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "kivtools/Types.h"

namespace kiv {

/// How a pixel lies in memory.
enum class PixelFormat : std::int32_t {
  Rgb24 = 0,  ///< three bytes: blue, green, red
  Rgb32 = 1   ///< four bytes: blue, green, red, and one that nothing here reads
};

/// A picture of `Width() * Height()` pixels. Column 0 is the left one, row 0 the top one. Colours are taken and given
/// as 0x00BBGGRR; a top byte is not looked at, as a picture knows no system colours.
///
///     Bitmap bitmap(320, 200);
///     bitmap.FillRect(0, 0, 320, 100, 0x0000FF);   // the upper half is red
///     bitmap.SaveToFile("steag.bmp");
class KIV_API Bitmap {
 public:
  /// The empty picture, 0 by 0.
  Bitmap() noexcept = default;
  /// A black picture. Throws Error for a negative size and for one whose bytes no memory of this system could hold,
  /// std::bad_alloc where there is not enough of it now. A size of 0 is one.
  Bitmap(std::int32_t width, std::int32_t height, PixelFormat format = PixelFormat::Rgb24);
  /// Copies the picture; throws std::bad_alloc.
  Bitmap(const Bitmap& other);
  /// Leaves `other` empty.
  Bitmap(Bitmap&& other) noexcept;
  /// Takes over size, format and pixels; where it throws std::bad_alloc, this picture stays as it was.
  Bitmap& operator=(const Bitmap& other);
  /// Leaves `other` empty.
  Bitmap& operator=(Bitmap&& other) noexcept;
  ~Bitmap();

  /// Columns and rows. Example: 320 and 200 for `Bitmap(320, 200)`.
  [[nodiscard]] std::int32_t Width() const noexcept { return width_; }
  [[nodiscard]] std::int32_t Height() const noexcept { return height_; }
  /// How the pixels lie in memory. Example: `Bitmap().Format() == PixelFormat::Rgb24`.
  [[nodiscard]] PixelFormat Format() const noexcept { return format_; }
  /// Bytes from a row to the next: those of its pixels, rounded up to a multiple of four; 0 without rows.
  /// Example: 8 for a width of 2.
  [[nodiscard]] std::ptrdiff_t Stride() const noexcept { return stride_; }

  /// Changes the size. What lies within both sizes keeps its pixels, the rest is black. Throws as the constructor does;
  /// the picture then stays as it was. Example: after `SetSize(0, 0)` nothing is left.
  void SetSize(std::int32_t width, std::int32_t height);
  /// Changes how the pixels lie in memory; their colours stay. Throws as SetSize does.
  /// Example: after `SetFormat(PixelFormat::Rgb32)` a row of 2 pixels takes 8 bytes.
  void SetFormat(PixelFormat format);

  /// The bytes of row `y`, Stride() of them; they stay where they are until the picture gets another size or format.
  /// Throws Error for a row that the picture does not have. Example: `ScanLine(0)[2]` is the first pixel's red.
  [[nodiscard]] std::uint8_t* ScanLine(std::int32_t y);
  [[nodiscard]] const std::uint8_t* ScanLine(std::int32_t y) const;

  /// The colour of a pixel. Throws Error for one that the picture does not have.
  /// Example: `Bitmap(2, 2).Pixel(1, 1) == 0x000000`.
  [[nodiscard]] Colour Pixel(std::int32_t x, std::int32_t y) const;
  /// Draws a pixel; outside of the picture nothing happens. Example: `SetPixel(0, 0, 0xFF0000)` makes a blue corner.
  void SetPixel(std::int32_t x, std::int32_t y, Colour colour) noexcept;
  /// Fills the columns from `left` to `right - 1` of the rows from `top` to `bottom - 1`, as far as they lie within the
  /// picture; nothing where `right <= left` or `bottom <= top`. Example: `FillRect(0, 0, 3, 1, 0x00FF00)` makes the
  /// first three pixels green.
  void FillRect(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom, Colour colour) noexcept;

  /// Writes the picture as an uncompressed .bmp file, 24 or 32 bits a pixel. What was at `path` is replaced as a whole
  /// or stays as it was. Throws OsError where the system does not let it, and Error for a picture of 4 GiB or more.
  /// Example: `bitmap.SaveToFile("fond.bmp")`.
  void SaveToFile(TextView path) const;
  /// Takes over the picture of an uncompressed .bmp file: 1, 4, 8, 16 and 24 bits a pixel become PixelFormat::Rgb24,
  /// 32 bits PixelFormat::Rgb32. Throws OsError where the file cannot be read and Error where it is no such picture or
  /// is cut short; this picture then stays as it was. Example: `bitmap.LoadFromFile("fond.bmp")`.
  void LoadFromFile(TextView path);

  /// True for the same size, format and colours.
  friend KIV_API bool operator==(const Bitmap& a, const Bitmap& b) noexcept;

 private:
  friend class BitmapMaker;
  struct Freeing {
    void operator()(std::uint8_t* pixels) const noexcept;
  };

  [[nodiscard]] std::size_t PixelBytes() const noexcept { return format_ == PixelFormat::Rgb24 ? 3 : 4; }
  [[nodiscard]] std::size_t Bytes() const noexcept {
    return static_cast<std::size_t>(stride_) * static_cast<std::size_t>(height_);
  }
  [[nodiscard]] std::uint8_t* Row(std::int32_t y) const noexcept { return pixels_.get() + y * stride_; }

  std::int32_t width_ = 0;
  std::int32_t height_ = 0;
  PixelFormat format_ = PixelFormat::Rgb24;
  std::ptrdiff_t stride_ = 0;
  std::unique_ptr<std::uint8_t[], Freeing> pixels_;
};

/// A copy of the picture as a bitmap of Windows (an HBITMAP of its own rows, 24 or 32 bits a pixel), for the caller to
/// delete with DeleteObject. Throws OsError where Windows does not give it, for an empty picture too; on other systems
/// Error. Example: `SelectObject(context, reinterpret_cast<HBITMAP>(ToSystemBitmap(bitmap)))`.
[[nodiscard]] KIV_API Handle ToSystemBitmap(const Bitmap& bitmap);

/// A copy of a bitmap of Windows, which must not be selected into a device context: PixelFormat::Rgb32 for one of 32
/// bits a pixel, PixelFormat::Rgb24 for all others. Throws OsError for what is no bitmap; on other systems Error.
/// Example: `FromSystemBitmap(ToSystemBitmap(bitmap)) == bitmap`.
[[nodiscard]] KIV_API Bitmap FromSystemBitmap(Handle handle);

}  // namespace kiv
