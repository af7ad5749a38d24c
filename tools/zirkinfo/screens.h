#pragma once

#include <zirk/zirk.h>

#include <memory>

namespace ZIRK::zirkinfo {

/// A screen of this size, or of the display's own where that is smaller on either side. Null, with
/// the backend's error line, where there is none.
std::unique_ptr<VuBitmap> OpenScreen(VuGraphics& graphics, int width, int height);

/// Draws the whole of `picture` into the middle of `target`, scaled down to fit.
void DrawFitted(VuBitmap& target, VuBitmap& picture);

}  // namespace ZIRK::zirkinfo
