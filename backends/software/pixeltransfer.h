#pragma once

#include <zirk/vucolor.h>
#include <zirk/vupoint.h>
#include <zirk/vurect.h>

#include "software/pixelbuffer.h"

namespace ZIRK::backends {

/// What VuBitmap's operations of the same names do. Neither clipping nor blending applies.
bool GetPixels(const PixelBuffer& pixels, const VuRect& rect, void* dst);
bool SetPixels(PixelBuffer& pixels, const VuRect& rect, const void* src, unsigned pitch);
/// Returns the pixels that were written.
Box CopyPixels(PixelBuffer& dst, VuPoint at, const PixelBuffer& src, const VuRect& srcRect);

/// Sets every pixel.
void ClearPixels(PixelBuffer& pixels, VuColor color);

}  // namespace ZIRK::backends
