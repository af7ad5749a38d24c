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

}  // namespace ZIRK
