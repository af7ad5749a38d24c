#pragma once

#include <zirk/vumatrix2d.h>
#include <zirk/vupoint.h>
#include <zirk/vuvector2d.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>

#include "geometry/box.h"
#include "geometry/mapping.h"

namespace ZIRK::backends {

/// A line between pixels: one pixel wide, hard-edged, both ends included. It runs from top to
/// bottom, or from left to right if it is horizontal, so that both directions of a line draw the
/// same pixels.
struct Hairline {
  int x0, y0, x1, y1;
  bool reversed;  ///< The caller gave the line in the other direction.

  int Steps() const { return std::max(std::abs(x1 - x0), std::abs(y1 - y0)); }
  Box Bounds() const { return {std::min(x0, x1), y0, std::max(x0, x1) + 1, y1 + 1}; }
};

/// Maps a line to the surface. Returns nullopt if the matrix is singular or no part of the line
/// lies in the range of coordinates.
std::optional<Hairline> MapLine(VuPoint from, VuPoint to, const VuTMatrix2D<float>& m);

/// Positions at the first and last pixel of a line.
struct LineEnds {
  Point first, last;

  /// Returns the position at step `step` of `line`.
  Point At(const Hairline& line, int step) const {
    const int steps = line.Steps();
    return first + (last - first) * (steps ? static_cast<double>(step) / steps : 0);
  }
};

/// Returns the positions in a mask of `width` x `height` at the ends of `line`: the two at
/// `coords`, or, if `coords` is null, those of a mask that covers the pixels of the line from
/// `from` to `to`.
LineEnds MaskEnds(const VuTVector2D<float>* coords, int width, int height, VuPoint from, VuPoint to,
                  const Hairline& line);

/// The path of a line inside a clip. Every step moves along the longer axis; the other coordinate
/// is rounded to nearest.
struct LineWay {
  int x, y;              ///< The first pixel.
  int first, count;      ///< The step of the first pixel, and the number of steps.
  int alongX, alongY;    ///< Added at each step.
  int acrossX, acrossY;  ///< Added too at steps for which Turns() is -1.
  /// The distance across since the last turn, and the distance added by each step, in 1/2^64 of a
  /// pixel.
  uint64_t position, slope;

  /// Returns -1 if this step also moves across, otherwise 0. Call it once per step. A branch would
  /// be mispredicted at every other turn.
  ptrdiff_t Turns() {
    position += slope;
    return -static_cast<ptrdiff_t>(position < slope);
  }
};

LineWay WayInside(const Hairline& line, const Box& clip);

/// Calls `pixel(x, y, step)` for the pixels of a line inside `clip`.
template <typename F>
void Walk(const Hairline& line, const Box& clip, F&& pixel) {
  LineWay way = WayInside(line, clip);
  for (int step = way.first, end = way.first + way.count; step < end; ++step) {
    pixel(way.x, way.y, step);
    const int turns = static_cast<int>(way.Turns());
    way.x += way.alongX + (way.acrossX & turns);
    way.y += way.alongY + (way.acrossY & turns);
  }
}

/// Calls `run(box)` for the same pixels. Adjacent pixels of a row or column form one box.
template <typename F>
void WalkRuns(const Hairline& line, const Box& clip, F&& run) {
  Box box;
  Walk(line, clip, [&](int x, int y, int) {
    const Box pixel = {x, y, x + 1, y + 1};
    // No two pixels of a line share their position along the longer axis.
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
