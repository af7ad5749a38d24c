#pragma once

#include <zirk/vuvector2d.h>

#include <optional>

#include "software/texture.h"

namespace ZIRK::backends {

/// A surface as an operand of a drawing operation: its pixels, and how it is filtered.
struct Operand {
  const PixelBuffer* pixels;
  VuScaleMode scaleMode;
};

/// The coverage that a mask gives to a primitive.
class Mask {
 public:
  /// `coords` are the mask's positions at the four corners of the unit square of `placement`; null
  /// lays the mask over it. Only the pixels of `area` will be asked for. Nothing if a coordinate
  /// is not finite.
  static std::optional<Mask> Create(const Operand& mask, const VuTVector2D<float>* coords,
                                    const Placement& placement, const Box& area);

  /// Coverage of `count` pixels, at most kChunk, from (x, y) on. It is written to `scratch`, or
  /// stands where the result points.
  const uint8_t* Row(int x, int y, int count, uint8_t* scratch) const;

  /// Whether Row() needs no scratch, and rows lie Pitch() bytes apart.
  bool IsInPlace() const {
    return !twisted_ && texture_.IsAligned() && texture_.Pixels().Format() == VuPixelFormat::A8;
  }
  ptrdiff_t Pitch() const { return texture_.Pixels().Pitch(); }
  const Texture& Source() const { return texture_; }

 private:
  Mask(const Operand& mask, const MaskPlacement& place, const Box& area);

  Texture texture_;
  MaskPlacement place_;
  bool twisted_;  ///< Positions cannot be told by `place_.toMask` alone.
};

/// A mask read position by position.
class MaskPoints {
 public:
  explicit MaskPoints(const Operand& mask);

  /// Alpha at a position of the mask, 0 to 255; 0 where the position is not finite.
  uint32_t AlphaAt(Point position) const;

 private:
  Texture texture_;
};

}  // namespace ZIRK::backends
