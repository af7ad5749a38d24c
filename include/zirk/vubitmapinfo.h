#pragma once

#include <zirk/vuenums.h>

#include <cstdint>

namespace ZIRK {

/// Size, format and storage of a surface.
struct VuBitmapInfo {
  int32_t width;         ///< Pixels.
  int32_t height;        ///< Pixels.
  VuPixelFormat format;  ///< Layout of one pixel.
  int32_t pitch;         ///< Bytes from one row to the next.
  void* pixels;          ///< The top-left pixel while the surface is locked; null otherwise.
};

}  // namespace ZIRK
