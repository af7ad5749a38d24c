#include "opengles2/polygon.h"

#include <algorithm>
#include <cmath>

namespace ZIRK::backends {

namespace {

// The largest distance from a shape to the centre of a pixel that it touches.
constexpr double kReach = 0.75;
// Sharper corners would be moved too far.
constexpr double kLeastSine = 0.1;

}  // namespace

Polygon::Polygon(const Box& b) : count(4) {
  const double x0 = b.x0, y0 = b.y0, x1 = b.x1, y1 = b.y1;
  points = {Point{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}};
}

Polygon Polygon::Around(const Affine& a, const Box& box) {
  const double across = std::hypot(a.dx.x, a.dx.y), down = std::hypot(a.dy.x, a.dy.y);
  const double sine = std::abs(a.dx.x * a.dy.y - a.dx.y * a.dy.x) / (across * down);
  if (!(sine > kLeastSine)) return Polygon(box);
  // Moves every side outwards by kReach.
  const Point u = a.dx * (kReach / sine / across), v = a.dy * (kReach / sine / down);
  const Point c = a.origin;
  Polygon result;
  result.count = 4;
  result.points = {c - u - v, c + a.dx + u - v, c + a.dx + a.dy + u + v, c + a.dy - u + v};
  result.Cut(&Point::x, box.x0, -1);
  result.Cut(&Point::x, box.x1, 1);
  result.Cut(&Point::y, box.y0, -1);
  result.Cut(&Point::y, box.y1, 1);
  return result;
}

void Polygon::Cut(double Point::*axis, double limit, double sign) {
  const std::array<Point, 8> before = points;
  const int countBefore = count;
  count = 0;
  for (int i = 0; i < countBefore; ++i) {
    const Point p = before[static_cast<size_t>(i)];
    const Point next = before[static_cast<size_t>((i + 1) % countBefore)];
    const double inside = (limit - p.*axis) * sign, nextInside = (limit - next.*axis) * sign;
    const auto put = [this](Point point) { points[static_cast<size_t>(count++)] = point; };
    if (inside >= 0) put(p);
    if ((inside < 0) != (nextInside < 0)) put(p + (next - p) * (inside / (inside - nextInside)));
  }
}

Box Polygon::Bounds() const {
  Box b = {INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN};
  for (int i = 0; i < count; ++i) {
    const Point p = points[static_cast<size_t>(i)];
    b = {std::min(b.x0, static_cast<int>(std::floor(p.x))),
         std::min(b.y0, static_cast<int>(std::floor(p.y))),
         std::max(b.x1, static_cast<int>(std::ceil(p.x))),
         std::max(b.y1, static_cast<int>(std::ceil(p.y)))};
  }
  return b;
}

}  // namespace ZIRK::backends
