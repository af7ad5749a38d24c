#pragma once

#include <zirk/vurect.h>

#include <algorithm>
#include <cstdint>

namespace ZIRK::backends {

/// A rectangle of whole pixels, from (x0, y0) inclusive to (x1, y1) exclusive.
struct Box {
  int x0 = 0, y0 = 0, x1 = 0, y1 = 0;

  bool IsEmpty() const { return x0 >= x1 || y0 >= y1; }
  int Width() const { return x1 - x0; }
  int Height() const { return y1 - y0; }

  bool Contains(const Box& b) const { return x0 <= b.x0 && y0 <= b.y0 && b.x1 <= x1 && b.y1 <= y1; }
  bool Contains(int x, int y) const { return x0 <= x && x < x1 && y0 <= y && y < y1; }

  bool operator==(const Box& b) const {
    return x0 == b.x0 && y0 == b.y0 && x1 == b.x1 && y1 == b.y1;
  }
};

inline Box Intersection(const Box& a, const Box& b) {
  return {std::max(a.x0, b.x0), std::max(a.y0, b.y0), std::min(a.x1, b.x1), std::min(a.y1, b.y1)};
}

/// Returns the smallest box that contains both. Ignores empty boxes.
inline Box Union(const Box& a, const Box& b) {
  if (a.IsEmpty()) return b;
  if (b.IsEmpty()) return a;
  return {std::min(a.x0, b.x0), std::min(a.y0, b.y0), std::max(a.x1, b.x1), std::max(a.y1, b.y1)};
}

/// Converts `r`, clamped to the range of int. Returns an empty box if `r` is empty.
inline Box ToBox(const VuRect& r) {
  if (r.width <= 0 || r.height <= 0) return {};
  const auto end = [](int32_t start, int32_t extent) {
    return static_cast<int>(std::min<int64_t>(int64_t{start} + extent, INT32_MAX));
  };
  return {r.x, r.y, end(r.x, r.width), end(r.y, r.height)};
}

/// Converts a box that is not empty.
inline VuRect ToRect(const Box& b) {
  return {b.x0, b.y0, b.Width(), b.Height()};
}

/// A copy of pixels, clipped to both surfaces. It fills `box` of the destination with the pixels
/// that start at (srcX, srcY) of the source.
struct CopyPlan {
  Box box;
  int srcX, srcY;
};

/// Plans a copy of `srcRect` to (toX, toY). The plan's box is empty if there is nothing to copy.
inline CopyPlan PlanCopy(int toX, int toY, const Box& target, const VuRect& srcRect,
                         const Box& source) {
  const Box wanted = Intersection(ToBox(srcRect), source);
  if (wanted.IsEmpty()) return {};
  const int64_t moveX = int64_t{toX} - srcRect.x, moveY = int64_t{toY} - srcRect.y;
  const auto cut = [](int64_t v, int limit) {
    return static_cast<int>(std::clamp<int64_t>(v, 0, limit));
  };
  const Box box = {cut(wanted.x0 + moveX, target.x1), cut(wanted.y0 + moveY, target.y1),
                   cut(wanted.x1 + moveX, target.x1), cut(wanted.y1 + moveY, target.y1)};
  if (box.IsEmpty()) return {};
  return {box, static_cast<int>(box.x0 - moveX), static_cast<int>(box.y0 - moveY)};
}

}  // namespace ZIRK::backends
