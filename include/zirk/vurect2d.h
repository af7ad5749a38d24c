#pragma once

#include <zirk/export.h>
#include <zirk/vurect.h>
#include <zirk/vuvector2d.h>

#include <cstdint>
#include <limits>
#include <type_traits>

namespace ZIRK {

template <typename T>
class VuTMatrix2D;

/// An axis-aligned rectangle held as its two corners, for `float` and `int`.
///
/// Edges are closed: a rectangle contains its max corner, and one whose corners are equal is a
/// single point, not empty. It is empty when max lies before min in either axis; a new rectangle
/// is empty, inverted as far as it goes, so that the first addPoint() sets both corners.
/// Integer sums wrap around. Trivially copyable: it is passed by value to plug-ins.
template <typename T>
class ZIRK_API VuTRect2D {
 public:
  /// Empty.
  constexpr VuTRect2D() = default;
  /// Stores the corners as given, in whatever order.
  constexpr VuTRect2D(const VuTVector2D<T>& min, const VuTVector2D<T>& max)
      : min_(min), max_(max) {}
  /// By origin and extent.
  constexpr VuTRect2D(T x, T y, T width, T height)
      : min_(x, y), max_(add(x, width), add(y, height)) {}
  /// The far corner is origin plus extent, summed in integers.
  constexpr VuTRect2D(const VuRect& r)
      : min_(static_cast<T>(r.x), static_cast<T>(r.y)),
        max_(static_cast<T>(addInt(r.x, r.width)), static_cast<T>(addInt(r.y, r.height))) {}

  /// The corner that has the smaller coordinates in a rectangle that is not empty, and the other
  /// one. The references live as long as the rectangle.
  constexpr const VuTVector2D<T>& minPoint() const { return min_; }
  constexpr const VuTVector2D<T>& maxPoint() const { return max_; }
  /// A coordinate of minPoint().
  constexpr T x() const { return min_.x(); }
  constexpr T y() const { return min_.y(); }
  /// Distance of the corners; 0 for an empty rectangle.
  constexpr T width() const { return isEmpty() ? T(0) : sub(max_.x(), min_.x()); }
  constexpr T height() const { return isEmpty() ? T(0) : sub(max_.y(), min_.y()); }
  /// Whether maxPoint() lies before minPoint() in either axis.
  constexpr bool isEmpty() const { return max_.x() < min_.x() || max_.y() < min_.y(); }

  /// Replaces one corner, or both, without a look at their order.
  constexpr void setMinPoint(const VuTVector2D<T>& v) { min_ = v; }
  constexpr void setMaxPoint(const VuTVector2D<T>& v) { max_ = v; }
  constexpr void set(const VuTVector2D<T>& min, const VuTVector2D<T>& max) {
    min_ = min;
    max_ = max;
  }

  /// Whether the two share at least a point; touching edges do. False if either is empty.
  constexpr bool overlaps(const VuTRect2D& r) const {
    return !isEmpty() && !r.isEmpty() &&
           intervalsMeet(min_.x(), max_.x(), r.min_.x(), r.max_.x()) &&
           intervalsMeet(min_.y(), max_.y(), r.min_.y(), r.max_.y());
  }
  /// Whether all of `r` lies inside; a rectangle contains itself. False if either is empty.
  constexpr bool contains(const VuTRect2D& r) const {
    return !isEmpty() && !r.isEmpty() && min_.x() <= r.min_.x() && r.max_.x() <= max_.x() &&
           min_.y() <= r.min_.y() && r.max_.y() <= max_.y();
  }

  /// Moves both corners.
  constexpr void translateX(T d) {
    min_.setX(add(min_.x(), d));
    max_.setX(add(max_.x(), d));
  }
  constexpr void translateY(T d) {
    min_.setY(add(min_.y(), d));
    max_.setY(add(max_.y(), d));
  }
  constexpr void translate(T dx, T dy) {
    translateX(dx);
    translateY(dy);
  }
  constexpr void translate(const VuTVector2D<T>& d) { translate(d.x(), d.y()); }

  /// Moves each edge inwards; a large inset leaves an empty rectangle, a negative one grows it.
  constexpr void inset(T dx, T dy) {
    min_.setValue(add(min_.x(), dx), add(min_.y(), dy));
    max_.setValue(sub(max_.x(), dx), sub(max_.y(), dy));
  }
  constexpr void inset(const VuTVector2D<T>& d) { inset(d.x(), d.y()); }

  /// Grows the rectangle to hold `p`.
  constexpr void addPoint(const VuTVector2D<T>& p) {
    if (p.x() < min_.x()) min_.setX(p.x());
    if (p.x() > max_.x()) max_.setX(p.x());
    if (p.y() < min_.y()) min_.setY(p.y());
    if (p.y() > max_.y()) max_.setY(p.y());
  }
  /// Grows the rectangle to hold `r`; an empty `r` changes nothing.
  constexpr void expand(const VuTRect2D& r) {
    if (r.isEmpty()) return;
    addPoint(r.min_);
    addPoint(r.max_);
  }

  /// The bounding box of the rectangle drawn through `m`, corner by corner with
  /// VuTMatrix2D::transformVector (so truncated for `int`). An empty rectangle stays as it is.
  template <typename M>
  VuTRect2D transform(const VuTMatrix2D<M>& m) const;

  /// Compares numbers, not bits.
  constexpr bool operator==(const VuTRect2D& r) const { return min_ == r.min_ && max_ == r.max_; }
  constexpr bool operator!=(const VuTRect2D& r) const { return !(*this == r); }

  /// Logs the two corners, one "error" line each.
  void print(const char* name) const;

 private:
  static constexpr T kMost =
      std::is_same_v<T, int> ? std::numeric_limits<T>::max() : T(2147483648.0);
  static constexpr T kLeast =
      std::is_same_v<T, int> ? std::numeric_limits<T>::min() : T(-2147483648.0);

  // Integers go through the unsigned type, where overflow is defined.
  static constexpr int32_t addInt(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
  }
  static constexpr T add(T a, T b) {
    if constexpr (std::is_same_v<T, int>) return addInt(a, b);
    return static_cast<T>(a + b);
  }
  static constexpr T sub(T a, T b) {
    if constexpr (std::is_same_v<T, int>)
      return static_cast<T>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
    return static_cast<T>(a - b);
  }
  static constexpr bool intervalsMeet(T min, T max, T otherMin, T otherMax) {
    return (min <= otherMin && otherMin <= max) || (otherMin <= min && min <= otherMax);
  }

  VuTVector2D<T> min_{kMost, kMost};
  VuTVector2D<T> max_{kLeast, kLeast};
};

extern template class VuTRect2D<float>;
extern template class VuTRect2D<int>;

}  // namespace ZIRK
