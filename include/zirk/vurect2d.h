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
///     VuTRect2D<float> bounds;  // Empty.
///     for (int i = 0; i < count; ++i) bounds.addPoint(points[i]);
///     bounds = bounds.transform(matrix);
///
/// Edges are closed: a rectangle contains its max corner, and one whose corners are equal is a
/// single point, not empty. It is empty if max is less than min in either axis. A new rectangle is
/// empty, with min as large and max as small as possible, so that the first addPoint() sets both
/// corners. Integer sums wrap around. The class is trivially copyable and passed by value to
/// plug-ins.
///
/// **Threads**: a rectangle is a value; any thread may use one of its own.
template <typename T>
class ZIRK_API VuTRect2D {
 public:
  /// Empty.
  constexpr VuTRect2D() = default;
  /// A rectangle with these corners, which are stored as given, in whatever order.
  constexpr VuTRect2D(const VuTVector2D<T>& min, const VuTVector2D<T>& max)
      : min_(min), max_(max) {}
  /// A rectangle with the origin (`x`, `y`) and this extent.
  constexpr VuTRect2D(T x, T y, T width, T height)
      : min_(x, y), max_(add(x, width), add(y, height)) {}
  /// The same area as `r`. The far corner is origin plus extent, added as integers.
  constexpr VuTRect2D(const VuRect& r)
      : min_(static_cast<T>(r.x), static_cast<T>(r.y)),
        max_(static_cast<T>(addInt(r.x, r.width)), static_cast<T>(addInt(r.y, r.height))) {}

  /// The corner with the smaller coordinates, unless the rectangle is empty. The reference is valid
  /// as long as the rectangle.
  [[nodiscard]] constexpr const VuTVector2D<T>& minPoint() const { return min_; }
  /// The corner with the larger coordinates, unless the rectangle is empty. The reference is valid
  /// as long as the rectangle.
  [[nodiscard]] constexpr const VuTVector2D<T>& maxPoint() const { return max_; }
  /// The x coordinate of minPoint().
  [[nodiscard]] constexpr T x() const { return min_.x(); }
  /// The y coordinate of minPoint().
  [[nodiscard]] constexpr T y() const { return min_.y(); }
  /// The distance between the corners in x; 0 for an empty rectangle.
  [[nodiscard]] constexpr T width() const { return isEmpty() ? T(0) : sub(max_.x(), min_.x()); }
  /// The distance between the corners in y; 0 for an empty rectangle.
  [[nodiscard]] constexpr T height() const { return isEmpty() ? T(0) : sub(max_.y(), min_.y()); }
  /// Whether maxPoint() is less than minPoint() in either axis.
  [[nodiscard]] constexpr bool isEmpty() const {
    return max_.x() < min_.x() || max_.y() < min_.y();
  }

  /// Replaces minPoint(). The order of the corners is not checked.
  constexpr void setMinPoint(const VuTVector2D<T>& v) { min_ = v; }
  /// Replaces maxPoint(). The order of the corners is not checked.
  constexpr void setMaxPoint(const VuTVector2D<T>& v) { max_ = v; }
  /// Replaces both corners. Their order is not checked.
  constexpr void set(const VuTVector2D<T>& min, const VuTVector2D<T>& max) {
    min_ = min;
    max_ = max;
  }

  /// Whether the two share at least one point; touching edges do. False if either is empty.
  [[nodiscard]] constexpr bool overlaps(const VuTRect2D& r) const {
    return !isEmpty() && !r.isEmpty() &&
           intervalsMeet(min_.x(), max_.x(), r.min_.x(), r.max_.x()) &&
           intervalsMeet(min_.y(), max_.y(), r.min_.y(), r.max_.y());
  }
  /// Whether all of `r` lies inside; a rectangle contains itself. False if either is empty.
  [[nodiscard]] constexpr bool contains(const VuTRect2D& r) const {
    return !isEmpty() && !r.isEmpty() && min_.x() <= r.min_.x() && r.max_.x() <= max_.x() &&
           min_.y() <= r.min_.y() && r.max_.y() <= max_.y();
  }

  /// Moves the rectangle by `d` in x.
  constexpr void translateX(T d) {
    min_.setX(add(min_.x(), d));
    max_.setX(add(max_.x(), d));
  }
  /// Moves the rectangle by `d` in y.
  constexpr void translateY(T d) {
    min_.setY(add(min_.y(), d));
    max_.setY(add(max_.y(), d));
  }
  /// Moves the rectangle by (`dx`, `dy`).
  constexpr void translate(T dx, T dy) {
    translateX(dx);
    translateY(dy);
  }
  /// Moves the rectangle by `d`.
  constexpr void translate(const VuTVector2D<T>& d) { translate(d.x(), d.y()); }

  /// Moves the left and right edges inwards by `dx`, the others by `dy`. A large inset leaves an
  /// empty rectangle, and a negative one grows it.
  constexpr void inset(T dx, T dy) {
    min_.setValue(add(min_.x(), dx), add(min_.y(), dy));
    max_.setValue(sub(max_.x(), dx), sub(max_.y(), dy));
  }
  /// The same by the coordinates of `d`.
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

  /// The bounding box of the rectangle's corners, mapped by `m` with
  /// VuTMatrix2D::transformVector(), which truncates for `int`. An empty rectangle is returned
  /// unchanged.
  template <typename M>
  [[nodiscard]] VuTRect2D transform(const VuTMatrix2D<M>& m) const;

  /// Whether both corners are equal as numbers: +0 equals -0, and a NaN equals nothing.
  constexpr bool operator==(const VuTRect2D& r) const { return min_ == r.min_ && max_ == r.max_; }
  /// Whether a corner differs as a number.
  constexpr bool operator!=(const VuTRect2D& r) const { return !(*this == r); }

  /// Logs the two corners under `name`, one line each, at level error.
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
