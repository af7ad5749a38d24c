#pragma once

#include <zirk/export.h>

#include <cstdint>

namespace ZIRK {

/// A colour in one 32-bit word, 0xAARRGGBB, not premultiplied: `VuColor{0xFF112233}`.
///
/// The library forwards the word without looking at it; backends premultiply it.
struct VuColor {
  uint32_t argb;  ///< Alpha in the highest 8 bits, then red, green, blue.
};

/// Opaque white, 0xFFFFFFFF: the colour that leaves a blitted bitmap as it is.
extern ZIRK_API const VuColor white;

}  // namespace ZIRK
