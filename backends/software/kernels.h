#pragma once

#include <cstddef>
#include <cstdint>

#include "surface/blendfactors.h"

/// The inner loops on 32-bit premultiplied pixels (0xAARRGGBB), for whole rectangles at a time:
/// small operations are the common ones, and each call costs more than a few pixels.
///
/// Pitches count elements, not bytes. Products are rounded to nearest, sums are clamped. A colour
/// that is blended through coverage is rounded once, together with what it is blended with.

namespace ZIRK::backends {

/// A rectangle of destination pixels and what is drawn on it. Unused fields are ignored.
struct PixelSpan {
  uint32_t* dst;
  ptrdiff_t dstPitch;
  int width;
  int height;
  const uint32_t* src = nullptr;  ///< A pixel for each of the destination's.
  ptrdiff_t srcPitch = 0;
  uint32_t color = 0;                 ///< Colour drawn, or multiplied with each source pixel.
  const uint8_t* coverage = nullptr;  ///< 0 to 255 for each pixel.
  ptrdiff_t coveragePitch = 0;
  uint32_t opaque = 0;  ///< 0xFF000000 for a destination without alpha, else 0.
  int rowsBelow = 0;    ///< How many more rows follow this span at once, at the same columns.
  uint16_t* dst565 = nullptr;  ///< Instead of `dst`, for a destination of RGB565.
};

/// Where a row of pixels is read from an image: 16.16 fixed point positions in pixels, `x` and `y`
/// of the first and the steps from one to the next. Bilinear positions are those of the top-left
/// of the four pixels. Positions beyond the limits read the nearest pixel inside; the first one
/// lies within kFarthestSample.
struct SampleRow {
  const uint32_t* pixels;
  ptrdiff_t pitch;
  int minX, minY, maxX, maxY;  ///< Inclusive.
  int32_t x, y, stepX, stepY;
  /// What the steps lack, in 1/65536 of their last place: for nearest pixels along one axis, 0 for
  /// any others.
  int32_t stepFractionX = 0, stepFractionY = 0;
};

/// Most pixels of a row that are sampled at a time.
constexpr int kSampleLimit = 256;

/// Steps shorter than this, either way, never take the positions of a row all the way around.
constexpr int32_t kShortStep = (1 << 30) / kSampleLimit;

/// The largest whole part of a first position. No enlarged row that starts within reaches positions
/// that wrap around. A row that is made smaller may: it then reads wrong pixels, inside the limits.
constexpr int kFarthestSample = 32000;

/// One build of the loops for one instruction set.
struct Kernels {
  using SpanKernel = void (*)(const PixelSpan&);
  using SampleKernel = void (*)(const SampleRow&, uint32_t* out, int count);
  using FactorKernel = void (*)(uint32_t* dst, const uint32_t* src, int count,
                                const BlendFactors& factors, uint32_t blendColor);

  /// Replace (`Source`) or blend by source + destination * (1 - source alpha) (`Over`).
  enum Operator { Source = 0, Over = 1 };

  /// One colour, without and with coverage: [operator][has coverage].
  SpanKernel fill[2][2];
  /// Source pixels: [operator][multiplied by the colour][has coverage].
  SpanKernel blit[2][2][2];

  /// The same onto RGB565, what there is of it: [operator][has coverage], and source pixels as they
  /// are by [operator]. Null where such pixels are to be widened, drawn on and narrowed again.
  SpanKernel fill565[2][2];
  SpanKernel blit565[2];

  SampleKernel sampleNearest;
  SampleKernel sampleBilinear;

  /// source * factor + destination * factor for each channel, rounded once. `blendColor` is
  /// premultiplied.
  FactorKernel blendByFactors;
};

}  // namespace ZIRK::backends
