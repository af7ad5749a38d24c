#pragma once

#include <cstddef>

#include "support/pngfile.h"

namespace ZIRK::support {

/// How far two pictures are apart, in steps of a channel, of which white has 255.
struct Difference {
  double worst = 0;
  double mean = 0;        ///< Of all channels of all pixels.
  size_t worstPixel = 0;  ///< The first with the worst difference.
  size_t firstPixel = 0;  ///< That goes beyond the limit; the number of pixels if none does.
  Picture picture;        ///< Eight times the difference, opaque.
};

/// Compares two pictures of the same size.
Difference Compare(const Picture& drawn, const Picture& expected, double limit);

/// The part `rect` of a picture, which it lies inside.
Picture Crop(const Picture& picture, const VuRect& rect);

}  // namespace ZIRK::support
