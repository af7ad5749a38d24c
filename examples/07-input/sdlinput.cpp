#include <SDL.h>

#include "input.h"

namespace {

class SdlInput final : public Input {
 public:
  ~SdlInput() override { SDL_QuitSubSystem(SDL_INIT_EVENTS); }

  bool Read(std::vector<Touch>& touches) override {
    for (SDL_Event event; SDL_PollEvent(&event);) {
      switch (event.type) {
        case SDL_QUIT:
          return false;
        case SDL_WINDOWEVENT:
          if (event.window.event == SDL_WINDOWEVENT_CLOSE) return false;
          break;
        case SDL_KEYDOWN:
          if (event.key.keysym.sym == SDLK_ESCAPE) return false;
          break;
        // SDL makes the same events of a finger on a touch screen.
        case SDL_MOUSEBUTTONDOWN:
          touches.push_back({{event.button.x, event.button.y}, true});
          break;
        case SDL_MOUSEMOTION:
          if (event.motion.state) touches.push_back({{event.motion.x, event.motion.y}, false});
          break;
      }
    }
    return true;
  }
};

}  // namespace

std::unique_ptr<Input> OpenSdlInput() {
  // Video is left to the library, which then chooses what shows the screen.
  if (SDL_InitSubSystem(SDL_INIT_EVENTS) != 0) return nullptr;
  return std::make_unique<SdlInput>();
}

bool IsShownBySdl() {
  return SDL_WasInit(SDL_INIT_VIDEO) != 0;
}
