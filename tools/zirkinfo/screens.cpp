#include "screens.h"

namespace ZIRK::zirkinfo {

std::unique_ptr<VuBitmap> OpenScreen(VuGraphics& graphics, int width, int height) {
  std::unique_ptr<VuBitmap> screen(graphics.CreateScreen(false));
  if (!screen) return nullptr;
  const VuRect bounds = screen->GetBounds();
  if (bounds.width < width || bounds.height < height) return screen;
  screen.reset();  // A display has one screen at a time.
  screen.reset(graphics.CreateScreen(width, height, true));
  return screen;
}

void DrawFitted(VuBitmap& target, VuBitmap& picture) {
  const VuRect bounds = target.GetBounds(), whole = picture.GetBounds();
  int width = bounds.width, height = bounds.width * whole.height / whole.width;
  if (height > bounds.height) {
    width = bounds.height * whole.width / whole.height;
    height = bounds.height;
  }
  picture.SetScaleMode(VuScaleMode::Bilinear);
  target.Clear(0xFF000000);
  target.DrawObject({(bounds.width - width) / 2, (bounds.height - height) / 2, width, height},
                    picture);
}

}  // namespace ZIRK::zirkinfo
