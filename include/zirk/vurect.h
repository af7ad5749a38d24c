#pragma once

#include <cstdint>

namespace ZIRK {

/// An integer rectangle by origin and extent, in pixels.
///
/// No invariant is enforced: negative and zero extents are carried as given, and draw nothing.
/// For the min/max form with its arithmetic see VuTRect2D.
struct VuRect {
  int32_t x;
  int32_t y;
  int32_t width;
  int32_t height;
};

}  // namespace ZIRK
