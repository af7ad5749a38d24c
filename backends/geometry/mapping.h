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
/// beyond it, in the direction of reading. This exceeds the error of interpolation.
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

/// Returns the square of side `size` around the centre of the point's pixel.
inline RectD ToRectD(VuPoint p, float size) {
  const double side = static_cast<double>(size);
  return {p.x + 0.5 - side / 2, p.y + 0.5 - side / 2, side, side};
}

/// Returns the pixels to copy from a surface of `bounds` for an operation that reads `rect`: the
/// pixels that `rect` touches, which may be none, or all pixels if `rect` is null. Makes `rect`
/// relative to the copy.
Box TakePart(RectD* rect, const Box& bounds);

/// A rectangle mapped to the surface.
///
/// The unit square represents the rectangle: (0, 0) is its top-left corner, (1, 1) its bottom-right
/// one. `toSurface` maps the unit square to the surface, `toUnit` is the inverse.
struct MappedQuad {
  Affine toSurface;
  Affine toUnit;
  bool hardEdged;  ///< The edges are those of `box` and need no anti-aliasing.
  Box box;         ///< All pixels that are touched; distant edges are clamped to kMaxCoordinate.

  /// Corners of the drawn part on the surface: top-left, top-right, bottom-right, bottom-left.
  Point corners[4];
};

/// Coordinates are clamped to plus and minus this value. No surface is that large.
constexpr double kMaxCoordinate = 1 << 24;

/// Returns whether a rectangle is not empty and all its edges lie in the range of coordinates.
inline bool IsInRange(const VuRect& r) {
  constexpr uint32_t kLimit = 1 << 24;
  // One comparison each: values below the range wrap around to values above it.
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

/// Maps `r` by `m`. An axis-aligned result is moved to the nearest whole pixels when `edges` asks
/// for it. Returns nullopt if the result has no area or is not finite.
std::optional<MappedQuad> MapRect(const RectD& r, const VuTMatrix2D<float>& m, Edges edges);

/// Returns the pixels that `r` maps to. This is a fast path for matrices without rotation. Returns
/// nullopt if it does not apply; `r` may still be visible.
std::optional<Box> MapUpright(const RectD& r, const VuTMatrix2D<float>& m);

/// Returns the translation of `m` in whole pixels, rounded as in MapUpright(). Returns nullopt if
/// `m` is not a pure translation.
std::optional<VuPoint> WholePixelMove(const VuTMatrix2D<float>& m);

/// A rectangle of a source mapped to the surface.
struct MappedSource {
  MappedQuad part;   ///< The part of the filled rectangle that the source covers.
  Affine toTexture;  ///< From the surface to the source, biased.
  Box limits;        ///< The pixels of the source that may be read.
};

/// Maps `srcRect` of a source with the pixels `bounds` so that it fills `whole`. Returns nullopt if
/// there is nothing to draw.
std::optional<MappedSource> MapSource(const RectD& srcRect, const Box& bounds,
                                      const MappedQuad& whole, VuScaleMode mode);

/// A mask mapped over a primitive.
struct MappedMask {
  Affine toMask;    ///< From the surface to the mask, biased.
  Affine toUnit;    ///< From the surface to the unit square of the primitive.
  Point crossTerm;  ///< Times u * v: the distance of positions in the mask from `toMask`.
};

/// Maps a mask of `width` x `height` over `primitive`: the positions `coords` of the mask at the
/// corners, or the whole mask if `coords` is null. Returns nullopt if a coordinate is not finite.
std::optional<MappedMask> MapMask(int width, int height, const VuTVector2D<float>* coords,
                                  const MappedQuad& primitive, VuScaleMode mode);

/// Maps a position by `m` in double precision.
Point MapPoint(const VuTMatrix2D<float>& m, double x, double y);

}  // namespace ZIRK::backends
