#include <zirk/zirk.h>

#include <SDL.h>

#include <memory>

using namespace ZIRK;

void DrawUntilClosed() {
  //! [events]
  SDL_InitSubSystem(SDL_INIT_EVENTS);
  std::unique_ptr<VuGraphics> graphics(VuGraphics::Create());
  std::unique_ptr<VuBitmap> screen(graphics->CreateScreen(640, 360, true));
  bool running = true;
  while (running) {
    for (SDL_Event event; SDL_PollEvent(&event);)
      if (event.type == SDL_QUIT) running = false;
    screen->SwapBuffers();
  }
  //! [events]
}
