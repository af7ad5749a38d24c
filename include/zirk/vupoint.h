#pragma once

#include <cstdint>

namespace ZIRK {

/// A position on a surface, in pixels from its top-left corner; y grows downwards.
struct VuPoint {
  int32_t x;  ///< Distance to the right.
  int32_t y;  ///< Distance downwards.
};

/// Whether both coordinates are equal.
constexpr bool operator==(VuPoint a, VuPoint b) {
  return a.x == b.x && a.y == b.y;
}
/// Whether a coordinate differs.
constexpr bool operator!=(VuPoint a, VuPoint b) {
  return !(a == b);
}

}  // namespace ZIRK
