#pragma once

#include <array>
#include <cstdint>

#include "geometry/box.h"
#include "geometry/mapping.h"
#include "surface/drawmemory.h"

namespace ZIRK::backends {

/// Exact area coverage of a convex quadrilateral, pixel row by pixel row.
class QuadCoverage {
 public:
  /// One row: pixels `begin` to `end` are touched; `solidBegin` to `solidEnd`, which may be empty,
  /// are completely inside. All have their coverage in Alpha().
  struct Row {
    int begin, solidBegin, solidEnd, end;
  };

  /// Memory to work in, kept from one shape to the next.
  struct Scratch {
    WorkMemory<float> area;     ///< Covered to the right of the edges, within the pixel.
    WorkMemory<float> carry;    ///< Height that is covered from this pixel on.
    WorkMemory<uint8_t> alpha;  ///< Of the row that was computed last.

    /// Has room for rows of `width` pixels. False after an error line if memory runs out.
    bool Reserve(int width) {
      const auto count = static_cast<size_t>(width);
      return area.Reserve(count + 1) && carry.Reserve(count + 1) && alpha.Reserve(count);
    }
  };

  /// `corners` in order around the shape, either way. Only pixels inside `limits` are looked at.
  /// `scratch` has room for rows of their width, and is in use until the end of the object.
  QuadCoverage(const Point corners[4], const Box& limits, Scratch& scratch);

  /// Computes row `y`, which lies inside the limits.
  Row Compute(int y);

  /// Coverage, 0 to 255, of pixel `x` of the computed row and those that follow.
  const uint8_t* Alpha(int x) const { return scratch_.alpha.Data() + (x - limits_.x0); }

 private:
  struct Edge {
    double x0, y0, y1, slope;  ///< y0 < y1
    bool leftSide;
  };
  /// Columns that an edge runs through in the row.
  struct Columns {
    int begin, end;
  };

  Columns AddEdge(const Edge& edge, double top, double bottom);
  void Resolve(int begin, int end, double inherited);
  void Forget(const Columns& columns);

  const Box limits_;
  std::array<Edge, 4> edges_{};
  int edgeCount_ = 0;
  Scratch& scratch_;
};

}  // namespace ZIRK::backends
