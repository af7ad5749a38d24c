#pragma once

#include <zirk/vuvector2d.h>

#include <optional>

#include "software/sourcesampler.h"
#include "surface/operands.h"

namespace ZIRK::backends {

/// The coverage that a mask gives to a primitive.
class MaskSampler {
 public:
  /// `coords` are the mask's positions at the four corners of the unit square of `quad`; null
  /// lays the mask over it. Only the pixels of `area` may be requested. Nothing if a coordinate
  /// is not finite.
  static std::optional<MaskSampler> Create(const Source<const PixelBuffer>& mask,
                                           const VuTVector2D<float>* coords, const MappedQuad& quad,
                                           const Box& area);

  /// Coverage of `count` pixels, at most kChunk, from (x, y) on. It is written to `scratch`, or
  /// stands where the result points.
  const uint8_t* Row(int x, int y, int count, uint8_t* scratch) const;

  /// Whether Row() needs no scratch, and rows lie Pitch() bytes apart.
  bool IsInPlace() const {
    return !hasCrossTerm_ && texture_.IsAligned() &&
           texture_.Pixels().Format() == VuPixelFormat::A8;
  }
  ptrdiff_t Pitch() const { return texture_.Pixels().Pitch(); }
  const SourceSampler& Texels() const { return texture_; }

 private:
  MaskSampler(const Source<const PixelBuffer>& mask, const MappedMask& place, const Box& area);

  SourceSampler texture_;
  MappedMask place_;
  bool hasCrossTerm_;  ///< `place_.toMask` alone does not give the positions.
};

/// A mask read position by position.
class MaskPoints {
 public:
  explicit MaskPoints(const Source<const PixelBuffer>& mask);

  /// Alpha at a position of the mask, 0 to 255; 0 where the position is not finite.
  uint32_t AlphaAt(Point position) const;

 private:
  SourceSampler texture_;
};

}  // namespace ZIRK::backends
