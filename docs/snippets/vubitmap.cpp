#include <zirk/zirk.h>

#include <memory>

using namespace ZIRK;

void DrawTwiceAsLarge(VuGraphics* graphics, VuBitmap* screen) {
  //! [snippet]
  std::unique_ptr<VuBitmap> bitmap(graphics->CreateBitmap(64, 64, VuPixelFormat::ARGB8888));
  bitmap->DrawRect(VuRect{8, 8, 48, 48}, 0xFF336699);
  screen->DrawObject(VuRect{100, 100, 128, 128}, *bitmap);  // Twice as large.
  //! [snippet]
}
