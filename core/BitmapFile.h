#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <span>

#include "kivtools/Bitmap.h"

/// Uncompressed .bmp files, as bytes from anywhere.
namespace kiv::bmpfile {

/// A picture in anybody's memory, to be written.
struct Picture {
  const std::uint8_t* top = nullptr;  ///< the first byte of the top row
  std::ptrdiff_t stride = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;
  PixelFormat format = PixelFormat::Rgb24;
};

/// Takes the next bytes of a file.
using Sink = std::function<void(std::span<const std::uint8_t>)>;

/// Writes a picture from its header to its last row in pieces of about 64 KiB. Throws Error, beginning with `context`,
/// for a picture that is too large for the format, and what the sink throws.
void Write(const Picture& picture, TextView context, const Sink& sink);

/// Fills the buffer with the file's bytes from that place on; returns how many there were.
using Source = std::function<std::size_t(std::uint64_t offset, std::span<std::uint8_t> buffer)>;

/// Reads a picture from a file of `size` bytes. Throws Error, beginning with `context`, where it is none or is cut
/// short, and what the source throws. However large the file says that its picture is, no more memory is taken than
/// its size makes likely.
Bitmap Read(std::uint64_t size, TextView context, const Source& source);

}  // namespace kiv::bmpfile
