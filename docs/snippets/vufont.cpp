#include <zirk/zirk.h>

#include <memory>

using namespace ZIRK;

void DrawUnderlined(VuBitmap* screen) {
  //! [snippet]
  std::unique_ptr<VuFont> font(VuFont::CreateFont("/usr/share/fonts/sans.ttf", 0, 24));
  screen->DrawText(*font, "Hello", VuPoint{10, 10}, 0xFFFFFFFF);
  const int right = 10 + font->GetOneLineWidth("Hello");
  screen->DrawLine(VuPoint{10, 40}, VuPoint{right, 40}, 0xFFFFFFFF);
  //! [snippet]
}
