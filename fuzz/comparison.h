#pragma once

namespace ZIRK {
class VuBitmap;
}

namespace ZIRK::fuzz {

/// Whether two surfaces of one size and format show the same: where both are even, each channel
/// differs by two steps at most. A pixel is even where it and those around it are the same within
/// two steps; along edges, and in patterns, which pixel is the nearest is up to rounding.
bool LookTheSame(VuBitmap& a, VuBitmap& b);

/// Gives `to` the pixels of `from`, which has the same size and format.
void Replace(VuBitmap& to, VuBitmap& from);

}  // namespace ZIRK::fuzz
