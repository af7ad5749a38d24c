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
/// Three flags remember which kinds of component the matrix may hold, and let the common cases
/// (identity, translation, scale) cost a few additions. A clear flag promises that its component
/// is the identity's; a set flag promises nothing. Arithmetic only ever sets flags: after
/// rotating by +a and then -a, hasRotation() is still true. makeIdentity() clears them.
///
/// No operation allocates. Trivially copyable: it is passed by value to plug-ins.
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

  /// Prepend a step: it acts on a point before everything already in the matrix.
  void translate(const VuTVector2D<T>& t);
  void scale(const VuTVector2D<T>& s);
  void rotate(T angle);  ///< Radians: x' = x*cos + y*sin, y' = -x*sin + y*cos.

  /// this = this * b: `b` acts after what is already here.
  void multRight(const VuTMatrix2D& b);
  /// this = b * this: `b` acts before what is already here.
  void multLeft(const VuTMatrix2D& b);
  /// The product, in which `b` acts after this.
  VuTMatrix2D operator*(const VuTMatrix2D& b) const;
  VuTMatrix2D& operator*=(const VuTMatrix2D& b);

  /// The inverse. A matrix with a rotation flag and no inverse gives the identity; a pure scale by
  /// zero gives infinities.
  VuTMatrix2D inverse() const;

  /// Splits the matrix into scale, rotation angle (radians) and translation. Exact without the
  /// rotation flag or for a uniform scale, an approximation otherwise.
  void decompose(VuTVector2D<T>& scale, T& angle, VuTVector2D<T>& translation) const;

  /// `v` through the matrix. For `int` each coordinate is truncated toward zero; one that no `int`
  /// can hold becomes the nearest that can (not-a-number becomes 0).
  template <typename U>
  VuTVector2D<U> transformVector(const VuTVector2D<U>& v) const;

  /// The flags; elements are not inspected.
  bool hasTranslation() const { return (flags_ & kTranslation) != 0; }
  bool hasScale() const { return (flags_ & kScale) != 0; }
  bool hasRotation() const { return (flags_ & kRotation) != 0; }
  bool isIdentity() const { return flags_ == 0; }

  /// Element at `row` and `col`, both expected below 3.
  T getElement(unsigned row, unsigned col) const;
  /// The nine elements, row by row; they live as long as the matrix.
  const T* get() const { return m_.data(); }

  /// Compares elements bit for bit (+0 and -0 differ, equal NaNs are equal), then the flags.
  bool operator==(const VuTMatrix2D& b) const;
  bool operator!=(const VuTMatrix2D& b) const { return !(*this == b); }

  /// Logs the matrix, one "error" line a row.
  void print(const char* name) const;
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
