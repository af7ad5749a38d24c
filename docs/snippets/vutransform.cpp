#include <zirk/zirk.h>

using namespace ZIRK;

void DrawTurned(VuBitmap* screen) {
  //! [snippet]
  VuTransform t(100, 50, 2, 2, 30);  // Turned by 30 degrees, twice as large, at (100, 50).
  screen->DrawRect(VuRect{-20, -20, 40, 40}, 0xFF336699, t);
  //! [snippet]
}
