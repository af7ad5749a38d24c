#pragma once

#include <zirk/kit/shapes.h>
#include <zirk/vurect.h>

#include <cstdint>
#include <vector>

namespace ZIRK::kit {

/// Works out which part of each pixel of a window polygons cover, to the exact area.
///
/// Each edge adds to the pixels of its rows what it covers to its right. Summed up along a row
/// these numbers are the coverage. Where polygons share an edge, their areas add up without a seam.
class AreaRaster {
 public:
  /// Begins a window, in pixels of the shape, with nothing in it.
  void Begin(const VuRect& window);
  /// Adds a polygon, whichever way round its corners are given. Where several overlap, the pixel is
  /// covered once.
  void Add(const Point* corners, size_t count) { Add(corners, count, 1); }
  /// Takes the polygon away from what is there.
  void Cut(const Point* corners, size_t count) { Add(corners, count, -1); }
  /// Writes the window's coverage, rows without gaps.
  void Write(uint8_t* coverage) const;

 private:
  void Add(const Point* corners, size_t count, float sign);
  void AddEdge(Point a, Point b, float sign);
  void AddToRow(float* row, float x0, float x1, float cover) const;

  VuRect window_{};
  std::vector<float> sums_;  ///< One more a row than it has pixels.
};

}  // namespace ZIRK::kit
