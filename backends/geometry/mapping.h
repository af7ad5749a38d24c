#pragma once

#include <zirk/vuenums.h>
#include <zirk/vumatrix2d.h>
#include <zirk/vupoint.h>
#include <zirk/vurect2d.h>
#include <zirk/vuvector2d.h>

#include <cmath>
#include <optional>

#include "geometry/box.h"

namespace ZIRK::backends {

struct Point {
  double x, y;

  friend Point operator+(Point a, Point b) { return {a.x + b.x, a.y + b.y}; }
  friend Point operator-(Point a, Point b) { return {a.x - b.x, a.y - b.y}; }
  friend Point operator*(Point a, double k) { return {a.x * k, a.y * k}; }
};

inline Point ToPoint(const VuTVector2D<float>& v) {
  return {static_cast<double>(v.x()), static_cast<double>(v.y())};
}

inline bool IsFinite(Point p) {
  return std::isfinite(p.x) && std::isfinite(p.y);
}

/// An affine function of a position: origin + x * dx + y * dy.
struct Affine {
  Point origin, dx, dy;

  Point operator()(double x, double y) const { return origin + dx * x + dy * y; }
};

/// When upright pictures are scaled, positions on the border of two texels are moved this far
/// beyond it, in the direction of reading: more than interpolation loses.
constexpr double kTexelBias = 1.0 / 4096;

/// A rectangle in the coordinates of a primitive.
struct RectD {
  double x, y, width, height;
};

inline RectD ToRectD(const VuRect& r) {
  return {double(r.x), double(r.y), double(r.width), double(r.height)};
}

inline RectD ToRectD(const VuTRect2D<float>& r) {
  const double x = double(r.minPoint().x()), y = double(r.minPoint().y());
  return {x, y, double(r.maxPoint().x()) - x, double(r.maxPoint().y()) - y};
}

/// A point: the square around the centre of its pixel.
inline RectD ToRectD(VuPoint p, float size) {
  const double side = static_cast<double>(size);
  return {p.x + 0.5 - side / 2, p.y + 0.5 - side / 2, side, side};
}

/// The pixels to copy of a surface of `bounds` for an operation that reads `rect` of it: all that
/// it touches, perhaps none; all there are if `rect` is null. Rebases `rect` to the copy.
Box TakePart(RectD* rect, const Box& bounds);

/// A rectangle mapped to the surface.
///
/// The unit square stands for the rectangle: (0, 0) is its top-left corner, (1, 1) its bottom-right
/// one. `toSurface` maps the unit square to the surface, `toUnit` is the inverse.
struct MappedQuad {
  Affine toSurface;
  Affine toUnit;
  bool hardEdged;  ///< The edges lie on whole pixels: those of `box`, and need no anti-aliasing.
  Box box;         ///< All pixels that are touched; far edges are cut, see kMaxCoordinate.

  /// Corners of the drawn part on the surface: top-left, top-right, bottom-right, bottom-left.
  Point corners[4];
};

/// Coordinates are clamped to plus and minus this. No surface is that large.
constexpr double kMaxCoordinate = 1 << 24;

/// Whether a rectangle has extent, and all its edges lie in the range of coordinates.
inline bool IsInRange(const VuRect& r) {
  constexpr uint32_t kLimit = 1 << 24;
  // One comparison each: what is below the range wraps around to above it.
  const auto isSize = [](int v) { return static_cast<uint32_t>(v) - 1 < kLimit - 1; };
  const auto isPlace = [](int v) { return static_cast<uint32_t>(v) + kLimit - 1 < 2 * kLimit - 1; };
  return isSize(r.width) && isSize(r.height) && isPlace(r.x) && isPlace(r.y);
}

/// Rounds a value in the range of coordinates to the nearest pixel. floor() would be a library call
/// on many processors.
inline int NearestPixel(double v) {
  const int towardZero = static_cast<int>(v + 0.5);
  return towardZero - (v + 0.5 < towardZero);
}

enum class Edges { OnWholePixels, SubPixel };

/// Maps `r` by `m`. An axis-aligned result is moved to the nearest whole pixels when `edges`
/// asks for it. Nothing for what has no area or is not finite.
std::optional<MappedQuad> MapRect(const RectD& r, const VuTMatrix2D<float>& m, Edges edges);

/// Fast path for matrices without rotation: the pixels that `r` maps to. Returns nullopt if the
/// fast path does not apply; `r` may still be visible.
std::optional<Box> MapUpright(const RectD& r, const VuTMatrix2D<float>& m);

/// The whole pixels by which `m` moves everything, rounded as MapUpright() rounds. Returns nullopt
/// if `m` does more than move.
std::optional<VuPoint> WholePixelMove(const VuTMatrix2D<float>& m);

/// A rectangle of a source mapped to the surface.
struct MappedSource {
  MappedQuad part;   ///< What is drawn: of the rectangle that is filled, as much as there is.
  Affine toTexture;  ///< From the surface to the source, biased.
  Box limits;        ///< The pixels of the source that may be read.
};

/// Maps `srcRect` of a source, of which there is `bounds`, so that it fills `whole`. Nothing if
/// there is nothing to draw.
std::optional<MappedSource> MapSource(const RectD& srcRect, const Box& bounds,
                                      const MappedQuad& whole, VuScaleMode mode);

/// A mask mapped over a primitive.
struct MappedMask {
  Affine toMask;    ///< From the surface to the mask, biased.
  Affine toUnit;    ///< From the surface to the unit square of the primitive.
  Point crossTerm;  ///< Times u * v: how positions in the mask differ from those by `toMask`.
};

/// Maps a mask of `width` x `height` over `primitive`: its positions `coords` at the corners, or
/// if they are null all of it. Nothing if a coordinate is not finite.
std::optional<MappedMask> MapMask(int width, int height, const VuTVector2D<float>* coords,
                                  const MappedQuad& primitive, VuScaleMode mode);

/// A position through `m`, in double precision.
Point MapPoint(const VuTMatrix2D<float>& m, double x, double y);

}  // namespace ZIRK::backends
