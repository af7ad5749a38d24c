#pragma once

namespace ZIRK {
class VuBitmap;
}

namespace ZIRK::fuzz {

/// Whether two surfaces of the same size and format look the same: in flat areas of both, each
/// channel differs by at most two steps. A pixel is in a flat area if it differs from those around
/// it by at most two steps. Along edges and in patterns, rounding decides which pixel is the
/// nearest.
bool LookTheSame(VuBitmap& a, VuBitmap& b);

/// Copies the pixels of `from` to `to`, which has the same size and format.
void Replace(VuBitmap& to, VuBitmap& from);

}  // namespace ZIRK::fuzz
