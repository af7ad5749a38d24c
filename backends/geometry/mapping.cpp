#include "geometry/mapping.h"

#include <algorithm>
#include <cmath>

namespace ZIRK::backends {

namespace {

// Deviations below this, in pixels, are rounding errors: the computed sine of half a turn is not
// quite zero.
constexpr double kTolerance = 1.0 / 512;
// The same for one element of a matrix relative to another. Such an error would round the two
// corners of an edge in the middle of a row of pixels to different sides.
constexpr double kNoise = 1e-6;

/// Returns x * a + y * b + move. Treats an element that is only rounding noise as 0.
double Sum(double x, double a, double y, double b, double move) {
  if (std::abs(a) < kNoise * std::abs(b)) return y * b + move;
  if (std::abs(b) < kNoise * std::abs(a)) return x * a + move;
  return x * a + y * b + move;
}

bool IsFinite(const RectD& r) {
  return std::isfinite(r.x + r.width) && std::isfinite(r.y + r.height);
}

double NearestWhole(double v) {
  return std::floor(v + 0.5);
}

int ClampToRange(double v) {
  return static_cast<int>(std::clamp(v, -kMaxCoordinate, kMaxCoordinate));
}

bool IsInRange(double v) {
  return std::abs(v) <= kMaxCoordinate;
}

/// Returns whether the sides are parallel to the axes, in either order and direction.
bool IsAxisAligned(const Affine& a) {
  const bool upright = std::abs(a.dx.y) < kTolerance && std::abs(a.dy.x) < kTolerance;
  const bool turned = std::abs(a.dx.x) < kTolerance && std::abs(a.dy.y) < kTolerance;
  return upright || turned;
}

/// Rounds corner by corner, so that rectangles that share an edge still share it.
Affine MoveToWholePixels(const Affine& a) {
  const auto snap = [](Point p) { return Point{NearestWhole(p.x), NearestWhole(p.y)}; };
  const Point origin = snap(a.origin);
  return {origin, snap(a.origin + a.dx) - origin, snap(a.origin + a.dy) - origin};
}

bool IsOnWholePixels(const Affine& a) {
  const Affine whole = MoveToWholePixels(a);
  const Point far = a.origin + a.dx + a.dy;
  const Point wholeFar = whole.origin + whole.dx + whole.dy;
  return std::abs(whole.origin.x - a.origin.x) < kTolerance &&
         std::abs(whole.origin.y - a.origin.y) < kTolerance &&
         std::abs(wholeFar.x - far.x) < kTolerance && std::abs(wholeFar.y - far.y) < kTolerance;
}

double Determinant(const Affine& a) {
  return a.dx.x * a.dy.y - a.dy.x * a.dx.y;
}

Affine Inverse(const Affine& a) {
  const double d = 1 / Determinant(a);
  const Affine linear = {{0, 0}, {a.dy.y * d, -a.dx.y * d}, {-a.dy.x * d, a.dx.x * d}};
  return {linear(a.origin.x, a.origin.y) * -1, linear.dx, linear.dy};
}

/// Limits drawing to the part `u0`..`u1`, `v0`..`v1` of the unit square.
void SetCorners(MappedQuad& p, double u0, double v0, double u1, double v1) {
  p.corners[0] = p.toSurface(u0, v0);
  p.corners[1] = p.toSurface(u1, v0);
  p.corners[2] = p.toSurface(u1, v1);
  p.corners[3] = p.toSurface(u0, v1);
  const auto [left, right] =
      std::minmax({p.corners[0].x, p.corners[1].x, p.corners[2].x, p.corners[3].x});
  const auto [top, bottom] =
      std::minmax({p.corners[0].y, p.corners[1].y, p.corners[2].y, p.corners[3].y});
  if (p.hardEdged)
    p.box = {ClampToRange(NearestWhole(left)), ClampToRange(NearestWhole(top)),
             ClampToRange(NearestWhole(right)), ClampToRange(NearestWhole(bottom))};
  else
    p.box = {ClampToRange(std::floor(left)), ClampToRange(std::floor(top)),
             ClampToRange(std::ceil(right)), ClampToRange(std::ceil(bottom))};
}

/// Returns the function that applies `inner`, then `outer`.
Affine Compose(const Affine& outer, const Affine& inner) {
  const auto linear = [&outer](Point p) { return outer.dx * p.x + outer.dy * p.y; };
  return {outer(inner.origin.x, inner.origin.y), linear(inner.dx), linear(inner.dy)};
}

/// Adds the bias to `toTexels` if it reads nearest texels along the axes.
Affine Biased(const Affine& toTexels, VuScaleMode mode) {
  const bool upright = toTexels.dx.y == 0 && toTexels.dy.x == 0,
             turned = toTexels.dx.x == 0 && toTexels.dy.y == 0;
  if (mode == VuScaleMode::Bilinear || (!upright && !turned)) return toTexels;
  const Point forward = toTexels.dx + toTexels.dy;
  const Point bias = {std::copysign(kTexelBias, forward.x), std::copysign(kTexelBias, forward.y)};
  return {toTexels.origin + bias, toTexels.dx, toTexels.dy};
}

/// Returns the part of `r` inside `bounds`. The result is empty if there is no such part.
RectD Cut(const RectD& r, const Box& bounds) {
  const double x0 = std::max<double>(r.x, bounds.x0), y0 = std::max<double>(r.y, bounds.y0);
  const double x1 = std::min<double>(r.x + r.width, bounds.x1);
  const double y1 = std::min<double>(r.y + r.height, bounds.y1);
  return {x0, y0, x1 - x0, y1 - y0};
}

/// Returns all pixels that `r` touches. Expects a rectangle that Cut() returned.
Box Around(const RectD& r) {
  return {static_cast<int>(std::floor(r.x)), static_cast<int>(std::floor(r.y)),
          static_cast<int>(std::ceil(r.x + r.width)), static_cast<int>(std::ceil(r.y + r.height))};
}

}  // namespace

Box TakePart(RectD* rect, const Box& bounds) {
  if (!rect) return bounds;
  const RectD visible = Cut(*rect, bounds);
  const Box part = visible.width > 0 && visible.height > 0 ? Around(visible) : Box();
  rect->x -= part.x0;
  rect->y -= part.y0;
  return part;
}

std::optional<Box> MapUpright(const RectD& r, const VuTMatrix2D<float>& m) {
  if (m.hasRotation() || !(r.width > 0 && r.height > 0)) return std::nullopt;
  const double farX = r.x + r.width, farY = r.y + r.height;
  if (m.isIdentity() && IsInRange(r.x) && IsInRange(r.y) && IsInRange(farX) && IsInRange(farY))
    return Box{NearestPixel(r.x), NearestPixel(r.y), NearestPixel(farX), NearestPixel(farY)};
  const float* e = m.get();
  const double scaleX = static_cast<double>(e[0]), scaleY = static_cast<double>(e[4]);
  const double moveX = static_cast<double>(e[6]), moveY = static_cast<double>(e[7]);
  const double x0 = r.x * scaleX + moveX, x1 = farX * scaleX + moveX;
  const double y0 = r.y * scaleY + moveY, y1 = farY * scaleY + moveY;
  if (!(IsInRange(x0) && IsInRange(x1) && IsInRange(y0) && IsInRange(y1)) || x1 < x0 || y1 < y0)
    return std::nullopt;
  return Box{NearestPixel(x0), NearestPixel(y0), NearestPixel(x1), NearestPixel(y1)};
}

std::optional<VuPoint> WholePixelMove(const VuTMatrix2D<float>& m) {
  if (m.isIdentity()) return VuPoint{0, 0};
  const float* e = m.get();
  const double moveX = static_cast<double>(e[6]), moveY = static_cast<double>(e[7]);
  if (m.hasRotation() || e[0] != 1.0f || e[4] != 1.0f || !IsInRange(moveX) || !IsInRange(moveY))
    return std::nullopt;
  return VuPoint{NearestPixel(moveX), NearestPixel(moveY)};
}

Point MapPoint(const VuTMatrix2D<float>& m, double x, double y) {
  const float* e = m.get();
  return {
      Sum(x, static_cast<double>(e[0]), y, static_cast<double>(e[3]), static_cast<double>(e[6])),
      Sum(x, static_cast<double>(e[1]), y, static_cast<double>(e[4]), static_cast<double>(e[7]))};
}

std::optional<MappedQuad> MapRect(const RectD& r, const VuTMatrix2D<float>& m, Edges edges) {
  MappedQuad p;
  if (!(r.width > 0 && r.height > 0)) return std::nullopt;
  const Point origin = MapPoint(m, r.x, r.y);
  // Subtract mapped corners instead of multiplying the extent by elements of the matrix: a
  // neighbour then computes the same corner.
  p.toSurface = {origin, MapPoint(m, r.x + r.width, r.y) - origin,
                 MapPoint(m, r.x, r.y + r.height) - origin};
  if (!IsFinite(p.toSurface.origin) || !IsFinite(p.toSurface.dx) || !IsFinite(p.toSurface.dy))
    return std::nullopt;

  p.hardEdged =
      IsAxisAligned(p.toSurface) && (edges == Edges::OnWholePixels || IsOnWholePixels(p.toSurface));
  if (p.hardEdged) p.toSurface = MoveToWholePixels(p.toSurface);
  const double area = std::abs(Determinant(p.toSurface));
  if (!(area > 1e-9) || !std::isfinite(area)) return std::nullopt;
  p.toUnit = Inverse(p.toSurface);
  SetCorners(p, 0, 0, 1, 1);
  return p;
}

std::optional<MappedSource> MapSource(const RectD& srcRect, const Box& bounds,
                                      const MappedQuad& whole, VuScaleMode mode) {
  if (!(srcRect.width > 0 && srcRect.height > 0) || !IsFinite(srcRect)) return std::nullopt;
  const RectD visible = Cut(srcRect, bounds);
  if (!(visible.width > 0 && visible.height > 0)) return std::nullopt;
  const auto u = [&](double x) { return (x - srcRect.x) / srcRect.width; };
  const auto v = [&](double y) { return (y - srcRect.y) / srcRect.height; };
  const Affine unitToTexture = {{srcRect.x, srcRect.y}, {srcRect.width, 0}, {0, srcRect.height}};
  MappedSource source = {whole, Biased(Compose(unitToTexture, whole.toUnit), mode),
                         Around(visible)};
  SetCorners(source.part, u(visible.x), v(visible.y), u(visible.x + visible.width),
             v(visible.y + visible.height));
  return source;
}

std::optional<MappedMask> MapMask(int width, int height, const VuTVector2D<float>* coords,
                                  const MappedQuad& primitive, VuScaleMode mode) {
  const double w = width, h = height;
  Point c[4] = {{0, 0}, {w, 0}, {w, h}, {0, h}};
  for (int i = 0; coords && i < 4; ++i) {
    c[i] = ToPoint(coords[i]);
    if (!IsFinite(c[i])) return std::nullopt;
  }
  const Affine unitToMask = {c[0], c[1] - c[0], c[3] - c[0]};
  return MappedMask{Biased(Compose(unitToMask, primitive.toUnit), mode), primitive.toUnit,
                    c[0] - c[1] + c[2] - c[3]};
}

}  // namespace ZIRK::backends
