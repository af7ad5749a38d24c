#pragma once

#include <zirk/export.h>
#include <zirk/vutransform.h>
#include <zirk/vuvector2d.h>

#include <array>
#include <cstdint>

namespace ZIRK {

/// A 3x3 matrix for 2D affine transforms of row vectors: p' = [x y 1] * M, so that
/// x' = x*m[0] + y*m[3] + m[6] and y' = x*m[1] + y*m[4] + m[7]. Instantiated for `float`.
///
///     VuTMatrix2D<float> m;
///     m.translate({100, 50});
///     m.rotate(0.5f);  // Acts before the translation.
///     screen->DrawRect(VuRect{-20, -20, 40, 40}, 0xFF336699, m);
///
/// Three flags record which kinds of component the matrix may hold, so that the common cases
/// (identity, translation, scale) cost a few additions. While a flag is clear, its component is
/// that of the identity; a set flag says nothing. Arithmetic sets flags and never clears them:
/// after rotating by +a and then -a, hasRotation() is still true. makeIdentity() clears them.
///
/// No operation allocates. The class is trivially copyable and passed by value to plug-ins.
///
/// **Threads**: a matrix is a value; any thread may use one of its own.
template <typename T>
class ZIRK_API VuTMatrix2D {
 public:
  /// The identity.
  VuTMatrix2D() { makeIdentity(); }

  /// The matrix that rotates, then scales, then translates as `t` says.
  VuTMatrix2D(VuTransform t);

  /// Makes this the identity and clears all flags.
  void makeIdentity() {
    m_ = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    flags_ = 0;
  }

  /// Prepends a translation by `t`: it acts on a point before everything already in the matrix.
  void translate(const VuTVector2D<T>& t);
  /// Prepends a scale by the factors `s`; a negative factor mirrors.
  void scale(const VuTVector2D<T>& s);
  /// Prepends a rotation by `angle` radians: x' = x*cos + y*sin, y' = -x*sin + y*cos. A positive
  /// angle turns counter-clockwise on the screen, where y grows downwards.
  void rotate(T angle);

  /// this = this * b: `b` acts after what is already here.
  void multRight(const VuTMatrix2D& b);
  /// this = b * this: `b` acts before what is already here.
  void multLeft(const VuTMatrix2D& b);
  /// The product this * b: `b` acts after this.
  [[nodiscard]] VuTMatrix2D operator*(const VuTMatrix2D& b) const;
  /// The same as multRight(b). Returns this matrix.
  VuTMatrix2D& operator*=(const VuTMatrix2D& b);

  /// The inverse. A singular matrix gives the identity if its rotation flag and another flag are
  /// set; a scale by zero without rotation gives infinities.
  [[nodiscard]] VuTMatrix2D inverse() const;

  /// Splits the matrix and stores its scale, rotation angle (radians) and translation. Exact
  /// without the rotation flag or for a uniform scale, an approximation otherwise.
  void decompose(VuTVector2D<T>& scale, T& angle, VuTVector2D<T>& translation) const;

  /// Returns `v` mapped by the matrix. For `int`, each coordinate is truncated toward zero; one
  /// outside the range becomes the nearest `int`, and a NaN becomes 0.
  template <typename U>
  [[nodiscard]] VuTVector2D<U> transformVector(const VuTVector2D<U>& v) const;

  /// Whether the translation flag is set. The elements are not inspected.
  [[nodiscard]] bool hasTranslation() const { return (flags_ & kTranslation) != 0; }
  /// Whether the scale flag is set. The elements are not inspected.
  [[nodiscard]] bool hasScale() const { return (flags_ & kScale) != 0; }
  /// Whether the rotation flag is set. The elements are not inspected.
  [[nodiscard]] bool hasRotation() const { return (flags_ & kRotation) != 0; }
  /// Whether no flag is set. The elements are not inspected.
  [[nodiscard]] bool isIdentity() const { return flags_ == 0; }

  /// The element at `row` and `col`, from 0. A value above 2 ends the process by an assertion.
  [[nodiscard]] T getElement(unsigned row, unsigned col) const;
  /// The nine elements, row by row. The pointer is valid as long as the matrix.
  [[nodiscard]] const T* get() const { return m_.data(); }

  /// Whether all elements are equal bit for bit (+0 and -0 differ, a NaN equals itself) and all
  /// flags are equal.
  bool operator==(const VuTMatrix2D& b) const;
  /// Whether an element differs in any bit, or a flag differs.
  bool operator!=(const VuTMatrix2D& b) const { return !(*this == b); }

  /// Logs the matrix under `name`, one line per row, at level error.
  void print(const char* name) const;
  /// The same without a name.
  void print() const { print(nullptr); }

 private:
  enum : uint8_t { kTranslation = 1, kScale = 2, kRotation = 4, kLinear = kScale | kRotation };

  ZIRK_LOCAL bool setCommutingProduct(const VuTMatrix2D& b);
  ZIRK_LOCAL void copyLinear(const VuTMatrix2D& from);
  ZIRK_LOCAL void setLinearProduct(const VuTMatrix2D& a, const VuTMatrix2D& b);
  ZIRK_LOCAL VuTVector2D<T> carried(T x, T y) const;
  ZIRK_LOCAL void setTranslation(const VuTVector2D<T>& t);
  ZIRK_LOCAL void setProduct(const VuTMatrix2D& a, const VuTMatrix2D& b);
  ZIRK_LOCAL VuTMatrix2D generalInverse() const;

  std::array<T, 9> m_;
  uint8_t flags_;
};

extern template class ZIRK_API VuTMatrix2D<float>;

}  // namespace ZIRK
