#pragma once

#include <zirk/vumatrix2d.h>
#include <zirk/vupoint.h>
#include <zirk/vuvector2d.h>

#include <algorithm>
#include <cstdlib>
#include <optional>

#include "geometry/box.h"
#include "geometry/mapping.h"

namespace ZIRK::backends {

/// A line between pixels, one pixel wide, hard-edged, both ends included. It runs top to bottom or
/// else left to right, so that both directions of the same line are one.
struct Hairline {
  int x0, y0, x1, y1;
  bool reversed;  ///< With respect to the line as it was given.

  int Steps() const { return std::max(std::abs(x1 - x0), std::abs(y1 - y0)); }
  Box Bounds() const { return {std::min(x0, x1), y0, std::max(x0, x1) + 1, y1 + 1}; }
};

/// Maps a line to the surface. Returns nullopt for a singular matrix, and if no part of the line
/// lies in the range of coordinates.
std::optional<Hairline> MapLine(VuPoint from, VuPoint to, const VuTMatrix2D<float>& m);

/// Positions at the first and last pixel of a line.
struct LineEnds {
  Point first, last;

  /// At step `step` of `line`.
  Point At(const Hairline& line, int step) const {
    const int steps = line.Steps();
    return first + (last - first) * (steps ? static_cast<double>(step) / steps : 0);
  }
};

/// The positions in a mask of `width` x `height` at the ends of `line`: the two at `coords`, or if
/// there are none those of the mask laid over the pixels of the line as it was given.
LineEnds MaskEnds(const VuTVector2D<float>* coords, int width, int height, VuPoint from, VuPoint to,
                  const Hairline& line);

/// Calls `pixel(x, y, step)` for the pixels of a line inside `clip`. Every step moves along the
/// longer axis; the other coordinate is the nearest one.
template <typename F>
void Walk(const Hairline& s, const Box& clip, F&& pixel) {
  const int64_t dx = s.x1 - s.x0, dy = s.y1 - s.y0;
  const bool flat = std::abs(dx) >= std::abs(dy);
  const int64_t along = flat ? dx : dy, across = flat ? dy : dx;
  const int start = flat ? s.x0 : s.y0, other = flat ? s.y0 : s.x0;
  const int sign = along < 0 ? -1 : 1;
  const int64_t length = std::abs(along);
  // Steps at which the longer axis lies inside the clip.
  const int low = flat ? clip.x0 : clip.y0, high = (flat ? clip.x1 : clip.y1) - 1;
  const int64_t first =
      std::max<int64_t>(0, sign > 0 ? int64_t{low} - start : start - int64_t{high});
  const int64_t last =
      std::min<int64_t>(length, sign > 0 ? int64_t{high} - start : start - int64_t{low});
  if (first > last) return;

  // other + across * step / length, rounded to nearest, as a whole part and a remainder.
  const int64_t unit = std::max<int64_t>(2 * length, 1);
  int64_t remainder = 2 * across * first + length;
  int64_t whole = remainder >= 0 ? remainder / unit : -((-remainder + unit - 1) / unit);
  remainder -= whole * unit;
  int main = start + sign * static_cast<int>(first), cross = other + static_cast<int>(whole);
  for (int64_t step = first; step <= last; ++step) {
    const int x = flat ? main : cross, y = flat ? cross : main;
    if (clip.Contains(x, y)) pixel(x, y, static_cast<int>(step));
    main += sign;
    remainder += 2 * across;
    if (remainder >= unit) {
      remainder -= unit;
      ++cross;
    } else if (remainder < 0) {
      remainder += unit;
      --cross;
    }
  }
}

/// Calls `run(box)` for the same pixels, those side by side as one box.
template <typename F>
void WalkRuns(const Hairline& line, const Box& clip, F&& run) {
  Box box;
  Walk(line, clip, [&](int x, int y, int) {
    const Box pixel = {x, y, x + 1, y + 1};
    // No two pixels of a line share their place along the longer axis.
    if (box.IsEmpty() || x == box.x0 || y == box.y0) {
      box = Union(box, pixel);
    } else {
      run(box);
      box = pixel;
    }
  });
  if (!box.IsEmpty()) run(box);
}

}  // namespace ZIRK::backends
