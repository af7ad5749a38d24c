#pragma once

#include <array>

#include "geometry/mapping.h"

namespace ZIRK::backends {

/// A convex polygon in pixels of the surface: a box, or what a box and a parallelogram share.
struct Polygon {
  std::array<Point, 8> points;
  int count = 0;

  explicit Polygon(const Box& box);

  /// All pixels of `box`, by their centres, that the unit square of `toSurface` touches. Others may
  /// be among them.
  static Polygon Around(const Affine& toSurface, const Box& box);

  Box Bounds() const;

 private:
  Polygon() = default;
  /// What is left on the side of `limit` where `sign` times the coordinate is less.
  void Cut(double Point::*axis, double limit, double sign);
};

}  // namespace ZIRK::backends
