#pragma once

/// @file
/// What shapes are filled with.

#include <zirk/export.h>
#include <zirk/vucolor.h>

#include <cstdint>

namespace ZIRK::kit {

/// What a shape is filled with: one colour, which converts by itself, or a gradient of two. A
/// gradient lies over the smallest rectangle of whole pixels that holds the shape, and its colours
/// are mixed premultiplied, so that one fades out without the other's tint. A paint is a value that
/// owns nothing; any thread may make one.
class ZIRK_API Paint {
 public:
  /// How a paint's two colours lie.
  enum class Kind : int32_t {
    Plain,   ///< There is one colour.
    Linear,  ///< Along a direction.
    Radial,  ///< Around the middle.
  };

  /// A single colour, as the drawing calls of VuBitmap take it.
  constexpr Paint(VuColor color) : from_(color), to_(color) {}
  /// The same for a number, 0xAARRGGBB.
  constexpr Paint(uint32_t argb) : Paint(VuColor(argb)) {}

  /// From `from` to `to` in the direction `degrees`, counter-clockwise from the right: 0 is to the
  /// right, 90 upwards, -90 downwards. The corners that lie farthest have the colours themselves.
  /// Directions are kept to a sixteenth of a degree; one that is not finite is downwards.
  static Paint Linear(VuColor from, VuColor to, float degrees = -90);
  /// From `from` in the middle to `to` at the ellipse that the shape's rectangle holds, and beyond.
  static Paint Radial(VuColor from, VuColor to);

  /// How the colours lie.
  constexpr Kind GetKind() const { return kind_; }
  /// The first colour, or the only one.
  constexpr VuColor GetFrom() const { return from_; }
  /// The second colour; of one that is plain the same as the first.
  constexpr VuColor GetTo() const { return to_; }
  /// The direction of a linear gradient in sixteenths of a degree, from 0 to 5759; else 0.
  constexpr int32_t GetDirection() const { return direction_; }

 private:
  constexpr Paint(Kind kind, VuColor from, VuColor to, int32_t direction)
      : kind_(kind), from_(from), to_(to), direction_(direction) {}

  Kind kind_ = Kind::Plain;
  VuColor from_, to_;
  int32_t direction_ = 0;
};

}  // namespace ZIRK::kit
