#pragma once

/// @file
/// Colours and gradients that fill shapes.

#include <zirk/export.h>
#include <zirk/vucolor.h>

#include <cstdint>

namespace ZIRK::kit {

/// Fills a shape with one colour or with a gradient between two. A colour converts to a Paint
/// implicitly. A gradient covers the smallest rectangle of whole pixels that contains the shape. It
/// interpolates premultiplied colours, so one colour fades out without taking the tint of the
/// other. A paint is a value; any thread may use one of its own.
class ZIRK_API Paint {
 public:
  /// How the two colours of a paint are arranged.
  enum class Kind : int32_t {
    Plain,   ///< A single colour.
    Linear,  ///< From one side to the other, along a direction.
    Radial,  ///< From the centre outwards.
  };

  /// A single colour, not premultiplied.
  constexpr Paint(VuColor color) : from_(color), to_(color) {}
  /// The same for a number, 0xAARRGGBB.
  constexpr Paint(uint32_t argb) : Paint(VuColor(argb)) {}

  /// A gradient from `from` to `to` in the direction `degrees`, counter-clockwise from the right: 0
  /// points right, 90 up, -90 down. The two colours are reached at the farthest corners of the
  /// rectangle. The direction is rounded to 1/16 degree; a non-finite one points down.
  [[nodiscard]] static Paint Linear(VuColor from, VuColor to, float degrees = -90);
  /// A gradient from `from` at the centre to `to` at the ellipse inscribed in the shape's
  /// rectangle. Outside the ellipse the colour is `to`.
  [[nodiscard]] static Paint Radial(VuColor from, VuColor to);

  /// The kind of paint.
  [[nodiscard]] constexpr Kind GetKind() const { return kind_; }
  /// The first colour, or the only one.
  [[nodiscard]] constexpr VuColor GetFrom() const { return from_; }
  /// The second colour; equal to the first if the paint is Plain.
  [[nodiscard]] constexpr VuColor GetTo() const { return to_; }
  /// The direction of a linear gradient in 1/16 degree, from 0 to 5759; 0 for other kinds.
  [[nodiscard]] constexpr int32_t GetDirection() const { return direction_; }

 private:
  constexpr Paint(Kind kind, VuColor from, VuColor to, int32_t direction)
      : kind_(kind), from_(from), to_(to), direction_(direction) {}

  Kind kind_ = Kind::Plain;
  VuColor from_, to_;
  int32_t direction_ = 0;
};

}  // namespace ZIRK::kit
