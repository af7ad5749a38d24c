#pragma once

#include <zirk/vuenums.h>

#include <cstddef>
#include <cstdint>

#include "geometry/box.h"
#include "geometry/mapping.h"
#include "software/kernels.h"
#include "software/pixelbuffer.h"

namespace ZIRK::backends {

/// Pixels that are worked on at a time, so that intermediate results stay on the stack.
constexpr int kChunk = kSampleLimit;

/// A part of a surface that another one is filled from, or masked with.
class SourceSampler {
 public:
  /// `limits` is what may be read, `toTexture` takes positions on the destination to positions in
  /// `pixels`. Only the pixels of `area` may be requested.
  SourceSampler(const PixelBuffer& pixels, const Box& limits, VuScaleMode mode,
                const Affine& toTexture, const Box& area);

  /// An aligned one: the pixel (x, y) of the destination is (x + offsetX, y + offsetY) of `pixels`.
  SourceSampler(const PixelBuffer& pixels, int offsetX, int offsetY);

  /// Whether each destination pixel is one pixel of the texture, moved by whole pixels.
  bool IsAligned() const { return aligned_; }
  const PixelBuffer& Pixels() const { return pixels_; }
  /// The texture's pixel for a destination pixel, while aligned.
  int AlignedX(int x) const { return x + offsetX_; }
  int AlignedY(int y) const { return y + offsetY_; }

  /// Premultiplied ARGB8888 for `count` pixels, at most kChunk, from (x, y) on. They are written to
  /// `scratch`, or stand where the result points.
  const uint32_t* Row(int x, int y, int count, uint32_t* scratch) const;

  /// How many rows from `y` on, up to `end`, have the same pixels from `x` on: more than one where
  /// nearest pixels are enlarged upright.
  int SameRows(int x, int y, int end) const;

  /// One position, for what does not run along a row.
  uint32_t At(Point position) const;

 private:
  void Sample(Point position, int count, uint32_t* out) const;

  const PixelBuffer& pixels_;
  const Box limits_;
  const bool bilinear_;
  const Affine toTexture_;
  const int32_t stepX_;  ///< Along a row, 16.16 fixed point.
  const int32_t stepY_;
  const int32_t stepFractionX_;  ///< What these lack, see SampleRow.
  const int32_t stepFractionY_;
  bool aligned_;
  int offsetX_ = 0;
  int offsetY_ = 0;
};

}  // namespace ZIRK::backends
