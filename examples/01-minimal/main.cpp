#include <zirk/kit/pictures.h>
#include <zirk/zirk.h>

#include <memory>

int main(int argc, char** argv) {
  std::unique_ptr<ZIRK::VuGraphics> graphics(ZIRK::VuGraphics::Create("FB", false));
  if (!graphics) return 1;
  std::unique_ptr<ZIRK::VuBitmap> screen(graphics->CreateScreen(640, 360, true));
  if (!screen) return 1;

  screen->Clear(0xFF10243E);
  screen->DrawRect({80, 60, 480, 240}, 0xFF2E6FB0);
  screen->DrawRect({200, 100, 320, 160}, 0xB0FFC857);  // Lets a third of what is below through.
  screen->DrawLine({80, 60}, {559, 299}, 0xFFFFFFFF);
  const bool done = argc < 2 || ZIRK::kit::SavePng(*screen, argv[1]);  // Before the swap.
  screen->SwapBuffers();
  return done ? 0 : 1;
}
