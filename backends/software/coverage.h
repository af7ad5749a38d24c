#pragma once

#include <array>
#include <cstdint>

#include "geometry/box.h"
#include "geometry/mapping.h"
#include "surface/drawmemory.h"

namespace ZIRK::backends {

/// The exact area coverage of a convex quadrilateral, computed row by row.
class QuadCoverage {
 public:
  /// One row: pixels `begin` to `end` are touched; `solidBegin` to `solidEnd`, which may be empty,
  /// are completely inside. Alpha() returns the coverage of all of them.
  struct Row {
    int begin, solidBegin, solidEnd, end;
  };

  /// Working memory, reused from one shape to the next.
  struct Scratch {
    WorkMemory<float> area;     ///< The part of a pixel that edges inside it cover.
    WorkMemory<float> carry;    ///< The height that is covered from this pixel on.
    WorkMemory<uint8_t> alpha;  ///< The coverage of the row computed last.

    /// Makes room for rows of `width` pixels. Logs an error and returns false if memory runs out.
    bool Reserve(int width) {
      const auto count = static_cast<size_t>(width);
      return area.Reserve(count + 1) && carry.Reserve(count + 1) && alpha.Reserve(count);
    }
  };

  /// `corners` go around the shape in either direction. Only pixels inside `limits` are computed.
  /// `scratch` has room for rows of their width and must outlive this object.
  QuadCoverage(const Point corners[4], const Box& limits, Scratch& scratch);

  /// Computes row `y`, which lies inside the limits.
  Row Compute(int y);

  /// Returns the coverage, 0 to 255, of the computed row from pixel `x` on.
  const uint8_t* Alpha(int x) const { return scratch_.alpha.Data() + (x - limits_.x0); }

 private:
  struct Edge {
    double x0, y0, y1, slope;  ///< y0 < y1
    bool leftSide;
  };
  /// The columns that an edge crosses in the row.
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
