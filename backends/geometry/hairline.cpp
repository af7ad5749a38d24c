#include "geometry/hairline.h"

#include <cmath>
#include <utility>

namespace ZIRK::backends {

namespace {

/// Cuts the line to the coordinates that can be counted with; false if nothing is left.
bool CutLine(Point& a, Point& b) {
  const Point d = b - a;
  double first = 0, last = 1;
  const auto cut = [&](double start, double delta) {
    if (delta == 0) return std::abs(start) <= kMaxCoordinate;
    const auto [enter, leave] =
        std::minmax({(-kMaxCoordinate - start) / delta, (kMaxCoordinate - start) / delta});
    first = std::max(first, enter);
    last = std::min(last, leave);
    return true;
  };
  if (!cut(a.x, d.x) || !cut(a.y, d.y) || first > last) return false;
  // Cut once more for what precision has lost of huge coordinates.
  const auto near = [](Point p) {
    return Point{std::clamp(p.x, -kMaxCoordinate, kMaxCoordinate),
                 std::clamp(p.y, -kMaxCoordinate, kMaxCoordinate)};
  };
  b = near(a + d * last);
  a = near(a + d * first);
  return true;
}

bool IsSingular(const VuTMatrix2D<float>& m) {
  const float* e = m.get();
  const double determinant = static_cast<double>(e[0]) * static_cast<double>(e[4]) -
                             static_cast<double>(e[1]) * static_cast<double>(e[3]);
  return !std::isfinite(determinant) || determinant == 0;
}

}  // namespace

std::optional<Hairline> MapLine(VuPoint from, VuPoint to, const VuTMatrix2D<float>& m) {
  Point a = MapPoint(m, from.x, from.y), b = MapPoint(m, to.x, to.y);
  if (IsSingular(m) || !IsFinite(a) || !IsFinite(b) || !CutLine(a, b)) return std::nullopt;
  Hairline line = {NearestPixel(a.x), NearestPixel(a.y), NearestPixel(b.x), NearestPixel(b.y),
                   false};
  if (std::pair(line.y0, line.x0) > std::pair(line.y1, line.x1)) {
    std::swap(line.x0, line.x1);
    std::swap(line.y0, line.y1);
    line.reversed = true;
  }
  return line;
}

LineEnds MaskEnds(const VuTVector2D<float>* coords, int width, int height, VuPoint from, VuPoint to,
                  const Hairline& line) {
  LineEnds ends{};
  if (coords) {
    ends = {ToPoint(coords[0]), ToPoint(coords[1])};
  } else {
    // The mask lies over the pixels from one end to the other.
    const double left = std::min(from.x, to.x), top = std::min(from.y, to.y);
    const double across = std::max(from.x, to.x) - left + 1;
    const double down = std::max(from.y, to.y) - top + 1;
    const auto laid = [&](VuPoint p) {
      return Point{(p.x + 0.5 - left) / across * width, (p.y + 0.5 - top) / down * height};
    };
    ends = {laid(from), laid(to)};
  }
  if (line.reversed) std::swap(ends.first, ends.last);
  return ends;
}

}  // namespace ZIRK::backends
