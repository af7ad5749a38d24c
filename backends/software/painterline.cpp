// Lines: one pixel wide, hard-edged, both ends included.

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "common/pixelmath.h"
#include "software/painter.h"
#include "software/pixeltraits.h"

namespace ZIRK::backends {

/// A line between pixels, top to bottom or else left to right, so that both directions of the same
/// line are one.
struct Painter::Segment {
  int x0, y0, x1, y1;
  bool reversed;

  int Steps() const { return std::max(x1 - x0, std::abs(y1 - y0)); }
};

namespace {

/// Cuts the line to the coordinates that can be counted with; false if nothing is left.
bool CutLine(Point& a, Point& b) {
  const Point d = b - a;
  double first = 0, last = 1;
  const auto cut = [&](double start, double delta) {
    if (delta == 0) return std::abs(start) <= kFar;
    const auto [enter, leave] = std::minmax({(-kFar - start) / delta, (kFar - start) / delta});
    first = std::max(first, enter);
    last = std::min(last, leave);
    return true;
  };
  if (!cut(a.x, d.x) || !cut(a.y, d.y) || first > last) return false;
  // Cut once more for what precision has lost of huge coordinates.
  const auto near = [](Point p) {
    return Point{std::clamp(p.x, -kFar, kFar), std::clamp(p.y, -kFar, kFar)};
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

/// Calls `pixel(x, y, step)` for the pixels of a line inside `clip`. Every step moves along the
/// longer axis; the other coordinate is the nearest one.
template <typename Segment, typename F>
void Walk(const Segment& s, const Box& clip, F&& pixel) {
  const int64_t dx = s.x1 - s.x0, dy = s.y1 - s.y0;
  const bool flat = std::abs(dx) >= std::abs(dy);
  const int64_t along = flat ? dx : dy, across = flat ? dy : dx;
  const int start = flat ? s.x0 : s.y0, other = flat ? s.y0 : s.x0;
  const int sign = along < 0 ? -1 : 1;
  const int64_t length = std::abs(along);
  // Steps at which the longer axis lies inside the clip.
  const int low = flat ? clip.x0 : clip.y0, high = (flat ? clip.x1 : clip.y1) - 1;
  const int64_t first =
      std::max<int64_t>(0, sign > 0 ? int64_t{low} - start : start - int64_t{high});
  const int64_t last =
      std::min<int64_t>(length, sign > 0 ? int64_t{high} - start : start - int64_t{low});
  if (first > last) return;

  // other + across * step / length, rounded to nearest, as a whole part and a remainder.
  const int64_t unit = std::max<int64_t>(2 * length, 1);
  int64_t remainder = 2 * across * first + length;
  int64_t whole = remainder >= 0 ? remainder / unit : -((-remainder + unit - 1) / unit);
  remainder -= whole * unit;
  int main = start + sign * static_cast<int>(first), cross = other + static_cast<int>(whole);
  for (int64_t step = first; step <= last; ++step) {
    const int x = flat ? main : cross, y = flat ? cross : main;
    if (clip.Contains(x, y)) pixel(x, y, static_cast<int>(step));
    main += sign;
    remainder += 2 * across;
    if (remainder >= unit) {
      remainder -= unit;
      ++cross;
    } else if (remainder < 0) {
      remainder += unit;
      --cross;
    }
  }
}

/// The mask's positions at the two ends of a line.
std::pair<Point, Point> MaskEnds(const Painter::MaskArgument& mask, VuPoint from, VuPoint to) {
  const auto given = [](const VuTVector2D<float>& v) {
    return Point{static_cast<double>(v.x()), static_cast<double>(v.y())};
  };
  if (mask.coords) return {given(mask.coords[0]), given(mask.coords[1])};
  // The mask lies over the pixels from one end to the other.
  const double left = std::min(from.x, to.x), top = std::min(from.y, to.y);
  const double width = std::max(from.x, to.x) - left + 1, height = std::max(from.y, to.y) - top + 1;
  const auto laid = [&](VuPoint p) {
    return Point{(p.x + 0.5 - left) / width * mask.mask.pixels->Width(),
                 (p.y + 0.5 - top) / height * mask.mask.pixels->Height()};
  };
  return {laid(from), laid(to)};
}

}  // namespace

void Painter::DrawLine(VuPoint from, VuPoint to, VuColor color, const MatrixF& m,
                       const OptionalMask& mask) {
  Refresh();
  Point a = Map(m, from.x, from.y), b = Map(m, to.x, to.y);
  const bool finite =
      std::isfinite(a.x) && std::isfinite(a.y) && std::isfinite(b.x) && std::isfinite(b.y);
  if (IsSingular(m) || !finite || !CutLine(a, b)) return;
  Segment line = {NearestPixel(a.x), NearestPixel(a.y), NearestPixel(b.x), NearestPixel(b.y),
                  false};
  if (std::pair(line.y0, line.x0) > std::pair(line.y1, line.x1)) {
    std::swap(line.x0, line.x1);
    std::swap(line.y0, line.y1);
    line.reversed = true;
  }
  const Box box =
      Visible({std::min(line.x0, line.x1), line.y0, std::max(line.x0, line.x1) + 1, line.y1 + 1});
  if (box.IsEmpty()) return;
  Touch(box);
  const uint32_t shade = Premultiply(color);
  if (mask) {
    auto [first, last] = MaskEnds(*mask, from, to);
    if (line.reversed) std::swap(first, last);
    DrawMaskedLine(line, shade, mask->mask, first, last);
  } else if (line.x0 == line.x1 || line.y0 == line.y1) {
    PaintBox(box, nullptr, shade);
  } else {
    DrawSlantedLine(line, shade);
  }
}

void Painter::DrawMaskedLine(const Segment& line, uint32_t color, const Operand& mask, Point first,
                             Point last) {
  const MaskPoints points(mask);
  const int steps = line.Steps();
  Walk(line, clip_, [&](int x, int y, int step) {
    const Point at = first + (last - first) * (steps ? static_cast<double>(step) / steps : 0);
    const uint32_t shade = ScalePixel(color, points.AlphaAt(at));
    PaintRun(x, x + 1, y, nullptr, shade, nullptr, nullptr);
  });
}

void Painter::DrawSlantedLine(const Segment& line, uint32_t color) {
  const std::optional<Kernels::Operator> op = blender_.Operator(IsOpaque(color));
  if (!op) {
    Walk(line, clip_,
         [&](int x, int y, int) { PaintRun(x, x + 1, y, nullptr, color, nullptr, nullptr); });
    return;
  }
  WithPixelTraits(target_.Format(), [&](auto traits) {
    using Traits = decltype(traits);
    using Stored = typename Traits::Stored;
    uint8_t* const pixels = target_.Row(0);
    const ptrdiff_t pitch = target_.Pitch();
    const auto at = [=](int x, int y) { return reinterpret_cast<Stored*>(pixels + y * pitch) + x; };
    const Stored narrow = Traits::Narrow(color);
    if (*op == Kernels::Source)
      Walk(line, clip_, [&](int x, int y, int) { *at(x, y) = narrow; });
    else
      Walk(line, clip_, [&](int x, int y, int) {
        *at(x, y) = Traits::Narrow(BlendOver(color, Traits::Widen(*at(x, y))));
      });
  });
}

}  // namespace ZIRK::backends
