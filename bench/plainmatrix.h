#pragma once

#include <zirk/vumatrix2d.h>
#include <zirk/vurect2d.h>

#include <array>

namespace ZIRK::bench {

/// A matrix without flags: every operation works on all the elements.
struct PlainMatrix {
  using Vector = VuTVector2D<float>;
  using Rect = VuTRect2D<float>;

  std::array<float, 9> m = {1, 0, 0, 0, 1, 0, 0, 0, 1};

  void translate(const Vector& t);
  void scale(const Vector& s);
  void rotate(float angle);

  PlainMatrix operator*(const PlainMatrix& b) const;
  PlainMatrix inverse() const;
  Vector transformVector(const Vector& v) const;
  Rect transform(const Rect& r) const;
};

}  // namespace ZIRK::bench
