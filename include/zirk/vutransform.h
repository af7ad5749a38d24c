#pragma once

#include <zirk/export.h>

#include <type_traits>

namespace ZIRK {

template <typename T>
class VuTMatrix2D;

/// A compact 2D transform: a point is rotated, then scaled, then translated.
///
///     VuTransform t(100, 50, 2, 2, 30);  // Turned by 30 degrees, twice as large, at (100, 50).
///     screen->DrawRect(VuRect{-20, -20, 40, 40}, 0xFF336699, t);
///
/// Use it where five numbers are enough, and a VuTMatrix2D<float> for anything else; a drawing
/// operation given a transform draws exactly as with the matrix made from it.
struct ZIRK_API VuTransform {
  /// The identity, (0, 0, 1, 1, 0).
  constexpr VuTransform() = default;

  /// The transform with these five numbers, in the order of the fields. None is checked.
  constexpr VuTransform(float translateX_, float translateY_, float scaleX_, float scaleY_,
                        float rotation_)
      : translateX(translateX_),
        translateY(translateY_),
        scaleX(scaleX_),
        scaleY(scaleY_),
        rotation(rotation_) {}

  /// Decomposes `m`. Exact while `m` has no rotation or scales uniformly; only approximate when a
  /// rotation meets two different scales (VuTMatrix2D::decompose). Shear is lost.
  VuTransform(VuTMatrix2D<float> m);

  float translateX = 0;  ///< Pixels.
  float translateY = 0;  ///< Pixels.
  float scaleX = 1;      ///< Factor; a negative one mirrors.
  float scaleY = 1;      ///< Factor; a negative one mirrors.
  float rotation = 0;    ///< Degrees; positive turns counter-clockwise on the screen (y down).
};

/// Whether the five numbers are equal: +0 equals -0, and a NaN equals nothing. It is a template for
/// exactly this type so that no matrix converts to it: `matrix == transform` compares matrices.
template <typename T, std::enable_if_t<std::is_same_v<T, VuTransform>, int> = 0>
constexpr bool operator==(const T& a, const T& b) {
  return a.translateX == b.translateX && a.translateY == b.translateY && a.scaleX == b.scaleX &&
         a.scaleY == b.scaleY && a.rotation == b.rotation;
}
/// Whether one of the five numbers differs. A template for the same reason.
template <typename T, std::enable_if_t<std::is_same_v<T, VuTransform>, int> = 0>
constexpr bool operator!=(const T& a, const T& b) {
  return !(a == b);
}

}  // namespace ZIRK
