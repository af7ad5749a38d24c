#pragma once

#include <cstddef>
#include <cstdint>

#include "surface/blendfactors.h"

/// The inner loops on 32-bit premultiplied pixels (0xAARRGGBB). They process whole rectangles,
/// since most operations are small and a call costs more than a few pixels.
///
/// Pitches count elements, not bytes. Products are rounded to nearest, sums are clamped. A colour
/// blended through coverage is rounded once, after it is added to the destination.

namespace ZIRK::backends {

/// A rectangle of destination pixels and the source to draw on it. Unused fields are ignored.
struct PixelSpan {
  uint32_t* dst;
  ptrdiff_t dstPitch;
  int width;
  int height;
  const uint32_t* src = nullptr;  ///< One pixel for each pixel of the destination.
  ptrdiff_t srcPitch = 0;
  uint32_t color = 0;                 ///< Colour drawn, or multiplied with each source pixel.
  const uint8_t* coverage = nullptr;  ///< 0 to 255 for each pixel.
  ptrdiff_t coveragePitch = 0;
  uint32_t opaque = 0;         ///< 0xFF000000 for a destination without alpha, else 0.
  int rowsBelow = 0;           ///< Rows below this span that the next calls draw.
  uint16_t* dst565 = nullptr;  ///< Used instead of `dst` for a destination of RGB565.
};

/// The positions in an image from which a row of pixels is read, in pixels as 16.16 fixed point:
/// `x` and `y` of the first position, and the steps from one to the next. Bilinear positions are
/// those of the top-left of the four pixels. Positions beyond the limits read the nearest pixel
/// inside; the first one lies within kFarthestSample.
struct SampleRow {
  const uint32_t* pixels;
  ptrdiff_t pitch;
  int minX, minY, maxX, maxY;  ///< Inclusive.
  int32_t x, y, stepX, stepY;
  /// The rounding error of the steps, in 1/65536 of their last bit. Nonzero only for nearest pixels
  /// along one axis.
  int32_t stepFractionX = 0, stepFractionY = 0;
};

/// The largest number of pixels of a row that are sampled at a time.
constexpr int kSampleLimit = 256;

/// Steps shorter than this, in either direction, cannot make the positions of a row wrap around
/// completely.
constexpr int32_t kShortStep = (1 << 30) / kSampleLimit;

/// The largest whole part of a first position. The positions of an enlarged row that starts within
/// it never wrap around. Those of a reduced row may; it then reads wrong pixels inside the limits.
constexpr int kFarthestSample = 32000;

/// The loops compiled for one instruction set.
struct Kernels {
  using SpanKernel = void (*)(const PixelSpan&);
  using SampleKernel = void (*)(const SampleRow&, uint32_t* out, int count);
  using FactorKernel = void (*)(uint32_t* dst, const uint32_t* src, int count,
                                const BlendFactors& factors, uint32_t blendColor);

  /// `Source` replaces the destination; `Over` is source + destination * (1 - source alpha).
  enum Operator { Source = 0, Over = 1 };

  /// Draws one colour: [operator][has coverage].
  SpanKernel fill[2][2];
  /// Draws source pixels: [operator][multiplied by the colour][has coverage].
  SpanKernel blit[2][2][2];

  /// Draws one colour on RGB565: [operator][has coverage]; `blit565` draws unchanged source pixels:
  /// [operator]. Null if the caller has to widen the pixels, draw on them and narrow them again.
  SpanKernel fill565[2][2];
  SpanKernel blit565[2];

  SampleKernel sampleNearest;
  SampleKernel sampleBilinear;

  /// Computes source * factor + destination * factor for each channel, rounded once. `blendColor`
  /// is premultiplied.
  FactorKernel blendByFactors;
};

}  // namespace ZIRK::backends
