#include <zirk/zirk.h>

#include <memory>

using namespace ZIRK;

void DrawBold(VuBitmap* screen) {
  //! [snippet]
  VuFontRegistry registry;
  registry.Register("/usr/share/fonts/sans.ttf");
  registry.Register("/usr/share/fonts/sansbold.ttf");
  std::unique_ptr<VuFont> font(registry.GetFont("Sans", 24, true, false));
  //! [snippet]
  if (font) screen->DrawText(*font, "Hello", VuPoint{10, 10}, 0xFFFFFFFF);
}
