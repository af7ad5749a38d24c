#pragma once

#include <zirk/vuenums.h>

#include <cstddef>
#include <cstdint>

#include "geometry/box.h"
#include "geometry/mapping.h"
#include "software/kernels.h"
#include "software/pixelbuffer.h"

namespace ZIRK::backends {

/// The number of pixels that are processed at a time, so that intermediate results fit on the
/// stack.
constexpr int kChunk = kSampleLimit;

/// A part of a surface that another surface is filled from or masked with.
class SourceSampler {
 public:
  /// `limits` are the pixels that may be read. `toTexture` maps positions on the destination to
  /// positions in `pixels`. Only the pixels of `area` may be requested.
  SourceSampler(const PixelBuffer& pixels, const Box& limits, VuScaleMode mode,
                const Affine& toTexture, const Box& area);

  /// Makes an aligned sampler: pixel (x, y) of the destination is (x + offsetX, y + offsetY) of
  /// `pixels`.
  SourceSampler(const PixelBuffer& pixels, int offsetX, int offsetY);

  /// Returns whether each destination pixel is one pixel of the texture, moved by whole pixels.
  bool IsAligned() const { return aligned_; }
  const PixelBuffer& Pixels() const { return pixels_; }
  /// Return the texture's pixel for a destination pixel. Expect that IsAligned() is true.
  int AlignedX(int x) const { return x + offsetX_; }
  int AlignedY(int y) const { return y + offsetY_; }

  /// Returns `count` pixels, at most kChunk, from (x, y) on, as premultiplied ARGB8888. The result
  /// points to `scratch` or into the texture.
  const uint32_t* Row(int x, int y, int count, uint32_t* scratch) const;

  /// Returns how many rows from `y` on, up to `end`, have the same pixels from `x` on. It is more
  /// than one if nearest pixels are enlarged without rotation.
  int SameRows(int x, int y, int end) const;

  /// Returns the pixel at one position, for callers that do not read along a row.
  uint32_t At(Point position) const;

 private:
  void Sample(Point position, int count, uint32_t* out) const;

  const PixelBuffer& pixels_;
  const Box limits_;
  const bool bilinear_;
  const Affine toTexture_;
  const int32_t stepX_;  ///< Along a row, 16.16 fixed point.
  const int32_t stepY_;
  const int32_t stepFractionX_;  ///< The rounding errors of the steps; see SampleRow.
  const int32_t stepFractionY_;
  bool aligned_;
  int offsetX_ = 0;
  int offsetY_ = 0;
};

}  // namespace ZIRK::backends
