#pragma once

#include <cstdint>

namespace ZIRK {

/// An integer rectangle by origin and extent, in pixels.
///
/// No invariant is enforced: negative and zero extents are kept, and draw nothing. VuTRect2D is the
/// form by two corners, with arithmetic.
struct VuRect {
  int32_t x;       ///< Left edge.
  int32_t y;       ///< Top edge.
  int32_t width;   ///< Extent to the right.
  int32_t height;  ///< Extent downwards.
};

/// Whether origin and extent are equal. Empty rectangles at different places differ.
constexpr bool operator==(VuRect a, VuRect b) {
  return a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height;
}
/// Whether origin or extent differs.
constexpr bool operator!=(VuRect a, VuRect b) {
  return !(a == b);
}

}  // namespace ZIRK
