#include <zirk/zirk.h>

using namespace ZIRK;

void DrawTurned(VuBitmap* screen) {
  //! [snippet]
  VuTMatrix2D<float> m;
  m.translate({100, 50});
  m.rotate(0.5f);  // Acts before the translation.
  screen->DrawRect(VuRect{-20, -20, 40, 40}, 0xFF336699, m);
  //! [snippet]
}
