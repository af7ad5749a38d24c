#pragma once

#include <zirk/vuenums.h>
#include <zirk/vurect.h>

#include <cstdint>

#include "geometry/pixelformat.h"

namespace ZIRK::backends {

/// The largest width and height of a surface or an image, in pixels.
constexpr int kMaxSide = 16384;

/// Returns whether a surface may have this size and format.
constexpr bool IsValidSurface(int width, int height, VuPixelFormat format) {
  return width > 0 && height > 0 && width <= kMaxSide && height <= kMaxSide &&
         BytesPerPixel(format) != 0;
}

/// Returns the bytes from one row to the next. Rows start on 16-byte boundaries for the vector
/// units.
constexpr int RowPitch(int width, VuPixelFormat format) {
  return (width * BytesPerPixel(format) + 15) & ~15;
}

/// Returns the bytes of a surface's pixels, or 0 if the size or format is invalid.
constexpr uint32_t SurfaceBytes(int width, int height, VuPixelFormat format) {
  if (!IsValidSurface(width, height, format)) return 0;
  return static_cast<uint32_t>(RowPitch(width, format)) * static_cast<uint32_t>(height);
}

/// Returns whether all of `r` lies on a surface. `r` may be empty but not inverted.
constexpr bool IsInside(const VuRect& r, int width, int height) {
  return r.x >= 0 && r.y >= 0 && r.width >= 0 && r.height >= 0 && r.x <= width && r.y <= height &&
         r.width <= width - r.x && r.height <= height - r.y;
}

}  // namespace ZIRK::backends
