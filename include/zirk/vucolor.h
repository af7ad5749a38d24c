#pragma once

#include <zirk/export.h>

#include <cstdint>

namespace ZIRK {

/// A colour in one 32-bit word, 0xAARRGGBB, not premultiplied: `VuColor c = 0xFF112233`.
///
/// The library forwards the word unread; backends premultiply it. Colours convert from and to the
/// word, and compare as it does. The compiler therefore accepts a colour in place of a number:
/// `DrawPoint(p, color, 2.0f)` compiles, although size and colour are exchanged.
struct VuColor {
  /// Transparent black, 0.
  constexpr VuColor() = default;
  /// The colour of the word `argb_`, 0xAARRGGBB.
  constexpr VuColor(uint32_t argb_) : argb(argb_) {}

  /// The word, 0xAARRGGBB.
  constexpr operator uint32_t() const { return argb; }

  uint32_t argb = 0;  ///< Alpha in the highest 8 bits, then red, green, blue.
};

/// Opaque white, 0xFFFFFFFF: a blit with this colour leaves the source's pixels unchanged.
extern ZIRK_API const VuColor white;

}  // namespace ZIRK
