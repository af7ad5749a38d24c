#include "support/difference.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace ZIRK::support {

namespace {

/// Channels are compared premultiplied, as they are seen.
std::array<double, 4> Channels(uint32_t argb) {
  const double alpha = argb >> 24;
  return {alpha, (argb >> 16 & 255) * alpha / 255, (argb >> 8 & 255) * alpha / 255,
          (argb & 255) * alpha / 255};
}

}  // namespace

Difference Compare(const Picture& drawn, const Picture& expected, double limit) {
  Difference result;
  result.firstPixel = drawn.pixels.size();
  result.picture = drawn;
  for (size_t i = 0; i < drawn.pixels.size(); ++i) {
    const auto a = Channels(drawn.pixels[i]), b = Channels(expected.pixels[i]);
    // Halves of a step come from files, which are not premultiplied.
    const double slack = a[0] == 255 && b[0] == 255 ? 0 : 0.5;
    uint32_t shown = 0xFF000000u;
    for (size_t c = 0; c < 4; ++c) {
      const double difference = std::max(0.0, std::abs(a[c] - b[c]) - slack);
      if (difference > result.worst) result.worstPixel = i;
      result.worst = std::max(result.worst, difference);
      result.mean += difference / (4.0 * static_cast<double>(drawn.pixels.size()));
      if (difference > limit) result.firstPixel = std::min(result.firstPixel, i);
      if (c > 0) shown |= static_cast<uint32_t>(std::min(255.0, difference * 8)) << (8 * (3 - c));
    }
    result.picture.pixels[i] = shown;
  }
  return result;
}

Picture Crop(const Picture& picture, const VuRect& rect) {
  Picture part{rect.width, rect.height, {}};
  for (int y = rect.y; y < rect.y + rect.height; ++y) {
    const auto row = picture.pixels.begin() + static_cast<ptrdiff_t>(y) * picture.width + rect.x;
    part.pixels.insert(part.pixels.end(), row, row + rect.width);
  }
  return part;
}

}  // namespace ZIRK::support
