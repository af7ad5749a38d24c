#pragma once

#include <zirk/vuenums.h>
#include <zirk/vurect.h>

#include <cstdint>

#include "geometry/pixelformat.h"

namespace ZIRK::backends {

/// Largest side of a surface or an image, in pixels.
constexpr int kMaxSide = 16384;

/// Whether a surface of this size and format can exist at all.
constexpr bool IsValidSurface(int width, int height, VuPixelFormat format) {
  return width > 0 && height > 0 && width <= kMaxSide && height <= kMaxSide &&
         BytesPerPixel(format) != 0;
}

/// Bytes from one row to the next: rows start on 16-byte boundaries, for the vector units.
constexpr int RowPitch(int width, VuPixelFormat format) {
  return (width * BytesPerPixel(format) + 15) & ~15;
}

/// Bytes of the pixel storage of a valid surface, 0 for any other.
constexpr uint32_t SurfaceBytes(int width, int height, VuPixelFormat format) {
  if (!IsValidSurface(width, height, format)) return 0;
  return static_cast<uint32_t>(RowPitch(width, format)) * static_cast<uint32_t>(height);
}

/// Whether all of `r`, which may be empty but not inverted, lies on a surface.
constexpr bool IsInside(const VuRect& r, int width, int height) {
  return r.x >= 0 && r.y >= 0 && r.width >= 0 && r.height >= 0 && r.x <= width && r.y <= height &&
         r.width <= width - r.x && r.height <= height - r.y;
}

}  // namespace ZIRK::backends
