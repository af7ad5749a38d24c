#pragma once

namespace ZIRK {

/// A 2D vector or point, for `float` and `int`. The class is trivially copyable and passed by value
/// to plug-ins.
///
///     const VuTVector2D<float> middle = (from + to) * 0.5f;
///
/// **Threads**: a vector is a value; any thread may use one of its own.
template <typename T>
class VuTVector2D {
 public:
  /// The vector (0, 0).
  constexpr VuTVector2D() = default;
  /// The vector (`x`, `y`).
  constexpr VuTVector2D(T x, T y) : x_(x), y_(y) {}

  /// The x component.
  [[nodiscard]] constexpr T x() const { return x_; }
  /// The y component.
  [[nodiscard]] constexpr T y() const { return y_; }

  /// Replaces the x component.
  constexpr void setX(T x) { x_ = x; }
  /// Replaces the y component.
  constexpr void setY(T y) { y_ = y; }
  /// Replaces both components.
  constexpr void setValue(T x, T y) {
    x_ = x;
    y_ = y;
  }

  /// Adds `d` to the x component.
  constexpr void translateX(T d) { x_ += d; }
  /// Adds `d` to the y component.
  constexpr void translateY(T d) { y_ += d; }

  /// The vector scaled by `k`, which is converted to `float` first.
  [[nodiscard]] constexpr VuTVector2D operator*(int k) const {
    return *this * static_cast<float>(k);
  }
  /// The vector scaled by `k`. For `int`, each product is truncated toward zero.
  [[nodiscard]] constexpr VuTVector2D operator*(float k) const {
    return {static_cast<T>(static_cast<float>(x_) * k), static_cast<T>(static_cast<float>(y_) * k)};
  }
  /// The sum, component by component.
  [[nodiscard]] constexpr VuTVector2D operator+(const VuTVector2D& v) const {
    return {x_ + v.x_, y_ + v.y_};
  }
  /// The difference, component by component.
  [[nodiscard]] constexpr VuTVector2D operator-(const VuTVector2D& v) const {
    return {x_ - v.x_, y_ - v.y_};
  }

  /// Whether both components are equal as numbers: +0 equals -0, and a NaN equals nothing.
  constexpr bool operator==(const VuTVector2D& v) const { return x_ == v.x_ && y_ == v.y_; }
  /// Whether a component differs as a number.
  constexpr bool operator!=(const VuTVector2D& v) const { return !(*this == v); }

 private:
  T x_ = 0;
  T y_ = 0;
};

}  // namespace ZIRK
