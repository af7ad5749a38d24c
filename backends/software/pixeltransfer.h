#pragma once

#include <zirk/vucolor.h>
#include <zirk/vupoint.h>
#include <zirk/vurect.h>

#include "software/pixelbuffer.h"

namespace ZIRK::backends {

// Neither clipping nor blending applies.

/// Reads `box`, which lies on the surface, into rows without gaps.
void ReadPixels(const PixelBuffer& pixels, const Box& box, void* dst);
/// Writes `box`, which lies on the surface, from rows `pitch` bytes apart.
void WritePixels(PixelBuffer& pixels, const Box& box, const void* src, unsigned pitch);
/// Copies `srcRect` of a surface, which may be `dst`, to `at`. Leaves out pixels outside either
/// surface. Returns the pixels that were written.
Box CopyRect(PixelBuffer& dst, VuPoint at, const PixelBuffer& src, const VuRect& srcRect);

/// Sets every pixel.
void ClearPixels(PixelBuffer& pixels, VuColor color);

}  // namespace ZIRK::backends
