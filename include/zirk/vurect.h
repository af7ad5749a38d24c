#pragma once

#include <cstdint>

namespace ZIRK {

/// An integer rectangle by origin and extent, in pixels.
///
/// No invariant is enforced: negative and zero extents are carried as given, and draw nothing.
/// For the min/max form with its arithmetic see VuTRect2D.
struct VuRect {
  int32_t x;       ///< Left edge.
  int32_t y;       ///< Top edge.
  int32_t width;   ///< To the right.
  int32_t height;  ///< Downwards.
};

/// Whether origin and extent are equal. Two rectangles without extent are not equal by that alone.
constexpr bool operator==(VuRect a, VuRect b) {
  return a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height;
}
/// Whether origin or extent differs.
constexpr bool operator!=(VuRect a, VuRect b) {
  return !(a == b);
}

}  // namespace ZIRK
