#include <zirk/zirk.h>

#include <memory>

using namespace ZIRK;

int main() {
  //! [snippet]
  std::unique_ptr<VuGraphics> graphics(VuGraphics::Create());
  if (!graphics) return 1;
  std::unique_ptr<VuBitmap> screen(graphics->CreateScreen(1280, 720, true));
  if (!screen) return 1;
  screen->DrawRect(VuRect{10, 10, 100, 50}, 0xFF336699);
  screen->SwapBuffers();
  //! [snippet]
}
