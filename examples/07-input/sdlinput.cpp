#include <SDL.h>

#include <algorithm>

#include "input.h"

namespace {

class SdlInput final : public Input {
 public:
  SdlInput(int width, int height) : width_(width), height_(height) {}
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
          touches.push_back({InPicture(event.button), true});
          break;
        case SDL_MOUSEMOTION:
          if (event.motion.state) touches.push_back({InPicture(event.motion), false});
          break;
      }
    }
    return true;
  }

 private:
  /// Converts to the picture, which is scaled to fit its window and centred.
  template <class Event>
  ZIRK::VuPoint InPicture(const Event& event) const {
    int windowWidth = width_, windowHeight = height_;
    SDL_GetWindowSize(SDL_GetWindowFromID(event.windowID), &windowWidth, &windowHeight);
    const double scale = std::min(double(windowWidth) / width_, double(windowHeight) / height_);
    return {static_cast<int>((event.x - (windowWidth - width_ * scale) / 2) / scale),
            static_cast<int>((event.y - (windowHeight - height_ * scale) / 2) / scale)};
  }

  const int width_, height_;  ///< Size of the picture.
};

}  // namespace

std::unique_ptr<Input> OpenSdlInput(int width, int height) {
  // The library starts SDL's video, and so chooses the driver that shows the screen.
  if (SDL_InitSubSystem(SDL_INIT_EVENTS) != 0) return nullptr;
  return std::make_unique<SdlInput>(width, height);
}

bool IsShownBySdl() {
  return SDL_WasInit(SDL_INIT_VIDEO) != 0;
}
