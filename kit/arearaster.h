#pragma once

#include <zirk/kit/shapes.h>
#include <zirk/vurect.h>

#include <cstdint>
#include <vector>

namespace ZIRK::kit {

/// Computes the exact area that polygons cover of each pixel in a window.
///
/// Each edge adds, row by row, the change in coverage that it causes; the running sum along a row
/// is the coverage. The areas of polygons that share an edge add up without a seam.
class AreaRaster {
 public:
  /// Begins an empty window, in pixels of the shape.
  void Begin(const VuRect& window);
  /// Adds a polygon, with its corners in either direction. Pixels where polygons overlap are
  /// covered once.
  void Add(const Point* corners, size_t count) { Add(corners, count, 1); }
  /// Subtracts a polygon.
  void Cut(const Point* corners, size_t count) { Add(corners, count, -1); }
  /// Writes the coverage of the window, in rows without padding.
  void Write(uint8_t* coverage) const;

 private:
  void Add(const Point* corners, size_t count, float sign);
  void AddEdge(Point a, Point b, float sign);
  void AddToRow(float* row, float x0, float x1, float cover) const;

  VuRect window_{};
  std::vector<float> sums_;  ///< One more per row than the window has columns.
};

}  // namespace ZIRK::kit
