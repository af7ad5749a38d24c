#include "geometry/hairline.h"

#include <cmath>
#include <utility>

namespace ZIRK::backends {

namespace {

/// Clips the line to the range of coordinates. Returns false if nothing is left.
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
  // Clamp the result: huge coordinates lose precision.
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

/// Returns part / whole in units of 1/2^64. The result is less than 1.
uint64_t ToFraction(double part, double whole) {
  constexpr double kLargest = 0x1.fffffffffffffp63;
  return static_cast<uint64_t>(std::min(part * (0x1p64 / whole), kLargest));
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

LineWay WayInside(const Hairline& s, const Box& clip) {
  const int dx = s.x1 - s.x0, dy = s.y1 - s.y0;
  const bool flat = std::abs(dx) >= std::abs(dy);
  const int along = flat ? dx : dy, across = flat ? dy : dx;
  const int alongSign = along < 0 ? -1 : 1, acrossSign = across < 0 ? -1 : 1;
  const int64_t length = std::abs(along), unit = std::max<int64_t>(2 * length, 1);
  const int64_t slope = 2 * int64_t{std::abs(across)};
  // Steps and turns count from the start of the line in its own directions. The clip is converted
  // to such counts. The position across is slope * step / unit, rounded to nearest by adding
  // `half`. Half a pixel rounds up on the surface, so down if the line runs backwards.
  const int64_t half = acrossSign > 0 ? length : unit - 1 - length;
  struct Range {
    int64_t low, high;
  };
  const auto count = [](int start, int sign, int low, int high) {
    return sign > 0 ? Range{int64_t{low} - start, int64_t{high} - 1 - start}
                    : Range{int64_t{start} - (high - 1), int64_t{start} - low};
  };
  const Range steps =
      flat ? count(s.x0, alongSign, clip.x0, clip.x1) : count(s.y0, alongSign, clip.y0, clip.y1);
  const Range turns =
      flat ? count(s.y0, acrossSign, clip.y0, clip.y1) : count(s.x0, acrossSign, clip.x0, clip.x1);
  // Returns the first step after `turned` turns.
  const auto stepOf = [=](int64_t turned) -> int64_t {
    const int64_t distance = turned * unit - half;
    if (distance <= 0) return 0;
    return slope == 0 ? length + 1 : (distance + slope - 1) / slope;
  };
  const int64_t first = std::max({int64_t{0}, steps.low, stepOf(turns.low)});
  const int64_t last = std::min({length, steps.high, stepOf(turns.high + 1) - 1});
  if (first > last) return {};

  const int64_t position = slope * first + half, turned = position / unit;
  const int main = alongSign * static_cast<int>(first),
            cross = acrossSign * static_cast<int>(turned);
  LineWay way = {};
  way.x = s.x0 + (flat ? main : cross);
  way.y = s.y0 + (flat ? cross : main);
  way.first = static_cast<int>(first);
  way.count = static_cast<int>(last - first + 1);
  (flat ? way.alongX : way.alongY) = alongSign;
  (flat ? way.acrossY : way.acrossX) = acrossSign;
  // All exact positions are multiples of 1 / unit. Adding half of that keeps rounding from moving a
  // position across a whole pixel.
  const auto whole = static_cast<double>(unit);
  way.position = ToFraction(static_cast<double>(position - turned * unit) + 0.5, whole);
  way.slope = ToFraction(static_cast<double>(slope), whole);
  return way;
}

LineEnds MaskEnds(const VuTVector2D<float>* coords, int width, int height, VuPoint from, VuPoint to,
                  const Hairline& line) {
  LineEnds ends{};
  if (coords) {
    ends = {ToPoint(coords[0]), ToPoint(coords[1])};
  } else {
    // The mask covers the pixels from one end to the other.
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
