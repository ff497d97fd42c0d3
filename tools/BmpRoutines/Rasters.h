#pragma once

#include "core/Raster.h"
#include "tools/BmpRoutines/BlurKernels.h"

/// The operations of BmpRoutines on pixels in anybody's memory.
namespace kiv::bmp {

/// Fills rows from left to right; `from` and `to` are resolved colours.
void FillFromLeft(const Raster& raster, Colour from, Colour to);

/// Fills rows from the top down.
void FillFromTop(const Raster& raster, Colour from, Colour to);

/// Softens the pixels in place, level 2 or less or 3 or more.
void Blur(const Raster& raster, std::int32_t level, const BlurKernels& kernels = BestBlurKernels());

}  // namespace kiv::bmp
