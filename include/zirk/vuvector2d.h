#pragma once

namespace ZIRK {

/// A 2D vector or point. Trivially copyable: it is passed by value to plug-ins.
template <typename T>
class VuTVector2D {
 public:
  /// (0, 0), or as given.
  constexpr VuTVector2D() = default;
  constexpr VuTVector2D(T x, T y) : x_(x), y_(y) {}

  /// A component.
  constexpr T x() const { return x_; }
  constexpr T y() const { return y_; }

  /// Replaces one component, or both.
  constexpr void setX(T x) { x_ = x; }
  constexpr void setY(T y) { y_ = y; }
  constexpr void setValue(T x, T y) {
    x_ = x;
    y_ = y;
  }

  /// Adds `d` to one component.
  constexpr void translateX(T d) { x_ += d; }
  constexpr void translateY(T d) { y_ += d; }

  /// Scaled by `k`, which is converted to T first.
  constexpr VuTVector2D operator*(int k) const { return *this * static_cast<float>(k); }
  constexpr VuTVector2D operator*(float k) const {
    return {static_cast<T>(static_cast<float>(x_) * k), static_cast<T>(static_cast<float>(y_) * k)};
  }
  /// By components.
  constexpr VuTVector2D operator+(const VuTVector2D& v) const { return {x_ + v.x_, y_ + v.y_}; }
  constexpr VuTVector2D operator-(const VuTVector2D& v) const { return {x_ - v.x_, y_ - v.y_}; }

  /// Compares numbers, not bits: +0 equals -0, and a NaN equals nothing.
  constexpr bool operator==(const VuTVector2D& v) const { return x_ == v.x_ && y_ == v.y_; }
  constexpr bool operator!=(const VuTVector2D& v) const { return !(*this == v); }

 private:
  T x_ = 0;
  T y_ = 0;
};

}  // namespace ZIRK
