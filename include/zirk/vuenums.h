#pragma once

#include <cstdint>

/// @file
/// The enumerations of the drawing interface. Each travels as a 32-bit integer and may carry any
/// value: what a backend does not know it treats as stated here.

namespace ZIRK {

/// How a picture of natural size is fitted into a requested box
/// (VuGraphics::GetScaledDimensions() says exactly how).
enum class VuDisplayMode : int32_t {
  Stretch = 0,  ///< The requested size as it is.
  Fit = 1,      ///< Scale uniformly so that the picture fits inside the box.
  Fill = 2,     ///< Scale uniformly towards covering the box.
  Natural = 3,  ///< The picture's own size where that fits inside the box, else the box.
};

/// Layout of one pixel, highest bits first, in the machine's own byte order. Colour channels are
/// premultiplied by alpha. Creating a surface of any other value fails.
enum class VuPixelFormat : int32_t {
  ARGB8888 = 0,  ///< 32 bits; the default.
  XRGB8888 = 1,  ///< 32 bits, opaque; the X byte is ignored.
  RGB565 = 2,    ///< 16 bits, opaque.
  ARGB4444 = 3,  ///< 16 bits.
  ARGB1555 = 4,  ///< 16 bits, one bit of alpha.
  A8 = 5,        ///< 8 bits of coverage; drawn as white of that alpha. The glyph atlas uses it.
};

/// Filtering of a surface when it is the source of a scaled or rotated drawing, or its mask.
/// Any other value counts as Nearest.
enum class VuScaleMode : int32_t {
  Nearest = 0,
  Bilinear = 1,
};

/// One factor of `result = source * sourceFactor + destination * destinationFactor`, per channel,
/// with all colours premultiplied and channels in 0..1. The blend colour is
/// VuBitmap::SetBlendColor's, premultiplied. Any other value counts as Zero.
enum class VuBlendingFactor : int32_t {
  Zero = 0,
  One = 1,
  SrcColor = 2,
  OneMinusSrcColor = 3,
  SrcAlpha = 4,
  OneMinusSrcAlpha = 5,
  DstAlpha = 6,
  OneMinusDstAlpha = 7,
  DstColor = 8,
  OneMinusDstColor = 9,
  SrcAlphaSaturate = 10,  ///< min(source alpha, 1 - destination alpha); 1 for the alpha channel.
  BlendColor = 11,
  OneMinusBlendColor = 12,
  BlendAlpha = 13,
  OneMinusBlendAlpha = 14,
};

/// What VuGraphics::GetFeatureDetails is asked for. Any other value is answered with nothing.
enum class FeatureType : int32_t {
  Details = 2,  ///< The backend's detail bits, one `uint32_t`.
};

}  // namespace ZIRK
