#pragma once

#include <zirk/vurect.h>

#include <algorithm>
#include <cstdint>

namespace ZIRK::kit {

/// The intersection of two rectangles; all zeros if it is empty. Right and bottom edges may exceed
/// 32 bits.
inline VuRect Intersect(const VuRect& a, const VuRect& b) {
  const auto right = std::min(int64_t{a.x} + a.width, int64_t{b.x} + b.width);
  const auto bottom = std::min(int64_t{a.y} + a.height, int64_t{b.y} + b.height);
  const int32_t x = std::max(a.x, b.x), y = std::max(a.y, b.y);
  if (right <= x || bottom <= y) return {0, 0, 0, 0};
  return {x, y, static_cast<int32_t>(right - x), static_cast<int32_t>(bottom - y)};
}

}  // namespace ZIRK::kit
