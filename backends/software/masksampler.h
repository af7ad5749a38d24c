#pragma once

#include <zirk/vuvector2d.h>

#include <optional>

#include "software/sourcesampler.h"
#include "surface/operands.h"

namespace ZIRK::backends {

/// The coverage that a mask gives to a primitive.
class MaskSampler {
 public:
  /// `coords` are the positions in the mask at the four corners of the unit square of `quad`; if
  /// null, the whole mask covers it. Only the pixels of `area` may be requested. Returns nullopt if
  /// a coordinate is not finite.
  static std::optional<MaskSampler> Create(const Source<const PixelBuffer>& mask,
                                           const VuTVector2D<float>* coords, const MappedQuad& quad,
                                           const Box& area);

  /// Returns the coverage of `count` pixels, at most kChunk, from (x, y) on. The result points to
  /// `scratch` or into the mask.
  const uint8_t* Row(int x, int y, int count, uint8_t* scratch) const;

  /// Returns whether Row() needs no scratch and rows are Pitch() bytes apart.
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

/// A mask that is read one position at a time.
class MaskPoints {
 public:
  explicit MaskPoints(const Source<const PixelBuffer>& mask);

  /// Returns the alpha at a position of the mask, 0 to 255, or 0 if the position is not finite.
  uint32_t AlphaAt(Point position) const;

 private:
  SourceSampler texture_;
};

}  // namespace ZIRK::backends
