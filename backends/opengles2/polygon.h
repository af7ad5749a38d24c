#pragma once

#include <array>

#include "geometry/mapping.h"

namespace ZIRK::backends {

/// A convex polygon in pixels of the surface: a box, or the intersection of a box and a
/// parallelogram.
struct Polygon {
  std::array<Point, 8> points;
  int count = 0;

  explicit Polygon(const Box& box);

  /// Contains the centres of all pixels of `box` that the unit square, mapped by `toSurface`,
  /// touches, and perhaps of others.
  static Polygon Around(const Affine& toSurface, const Box& box);

  Box Bounds() const;

 private:
  Polygon() = default;
  /// Cuts off the side of `limit` on which `sign` times the coordinate is greater.
  void Cut(double Point::*axis, double limit, double sign);
};

}  // namespace ZIRK::backends
