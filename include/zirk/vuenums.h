#pragma once

#include <cstdint>

/// @file
/// The enumerations of the drawing interface. Each is passed as a 32-bit integer and may hold any
/// value; every enumeration states how an unknown one is treated.

namespace ZIRK {

/// How a picture of natural size is fitted into a requested box
/// (VuGraphics::GetScaledDimensions() has the arithmetic).
enum class VuDisplayMode : int32_t {
  Stretch = 0,  ///< The requested size as it is.
  Fit = 1,      ///< Scale uniformly so that the picture fits inside the box.
  Fill = 2,     ///< Scale uniformly towards covering the box.
  Natural = 3,  ///< The picture's own size if that fits inside the box, else the box.
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
  Nearest = 0,   ///< The one pixel that the sample lies in.
  Bilinear = 1,  ///< The four nearest pixels, weighted by distance.
};

/// One factor of `result = source * sourceFactor + destination * destinationFactor`, per channel,
/// with all colours premultiplied and channels in 0..1. The compositing operators of Porter and
/// Duff ("Compositing Digital Images", 1984) are pairs of these. The blend colour is that of
/// VuBitmap::SetBlendColor(), premultiplied. Any other value counts as Zero.
enum class VuBlendingFactor : int32_t {
  Zero = 0,                 ///< 0.
  One = 1,                  ///< 1.
  SrcColor = 2,             ///< The source's channel.
  OneMinusSrcColor = 3,     ///< 1 - the source's channel.
  SrcAlpha = 4,             ///< The source's alpha.
  OneMinusSrcAlpha = 5,     ///< 1 - the source's alpha.
  DstAlpha = 6,             ///< The destination's alpha; 1 in a format without alpha.
  OneMinusDstAlpha = 7,     ///< 1 - the destination's alpha.
  DstColor = 8,             ///< The destination's channel.
  OneMinusDstColor = 9,     ///< 1 - the destination's channel.
  SrcAlphaSaturate = 10,    ///< min(source alpha, 1 - destination alpha); 1 for the alpha channel.
  BlendColor = 11,          ///< The blend colour's channel.
  OneMinusBlendColor = 12,  ///< 1 - the blend colour's channel.
  BlendAlpha = 13,          ///< The blend colour's alpha.
  OneMinusBlendAlpha = 14,  ///< 1 - the blend colour's alpha.
};

/// What VuGraphics::GetFeatureDetails can be asked for. For any other value it stores nothing.
enum class FeatureType : int32_t {
  Details = 2,  ///< The backend's detail bits, one `uint32_t`.
};

}  // namespace ZIRK
