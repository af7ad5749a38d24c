#pragma once

#include <zirk/zirk.h>

#include <memory>

namespace ZIRK::zirkinfo {

/// A screen of this size, or of the display's size if either side of that is smaller. Null, after
/// an error line of the backend, if there is none.
std::unique_ptr<VuBitmap> OpenScreen(VuGraphics& graphics, int width, int height);

/// Draws the whole of `picture` into the middle of `target`, scaled down to fit.
void DrawFitted(VuBitmap& target, VuBitmap& picture);

}  // namespace ZIRK::zirkinfo
