#pragma once

#include <gtest/gtest.h>
#include <zirk/zirk.h>

#include <cstdint>
#include <vector>

namespace ZIRK::helpers {

using Pixels = std::vector<uint32_t>;

/// What `surface` holds, of 32 bits, whether a handle or an implementation.
template <class Surface>
Pixels PixelsOf(Surface& surface) {
  const VuRect all = surface.GetBounds();
  Pixels pixels(static_cast<size_t>(all.width) * static_cast<size_t>(all.height));
  EXPECT_TRUE(surface.GetPixels(all, pixels.data()));
  return pixels;
}

/// One pixel of it, which may have fewer bits.
template <class Surface>
uint32_t PixelOf(Surface& surface, int x, int y) {
  uint32_t pixel = 0;
  EXPECT_TRUE(surface.GetPixels({x, y, 1, 1}, &pixel));
  return pixel;
}

}  // namespace ZIRK::helpers
