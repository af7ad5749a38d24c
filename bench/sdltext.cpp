#include <SDL.h>
#include <SDL_ttf.h>

#include <stdexcept>

#include "peer.h"
#include "textpeer.h"

namespace ZIRK::bench {

namespace {

struct Free {
  void operator()(SDL_Surface* surface) const { SDL_FreeSurface(surface); }
};
using Surface = std::unique_ptr<SDL_Surface, Free>;

/// A line is rendered into a surface of its own, smoothed and with alpha, and that is drawn.
class SdlText final : public TextPeer {
 public:
  SdlText() {
    if (TTF_Init() != 0) throw std::runtime_error(TTF_GetError());
    font_ = TTF_OpenFont(TextFont().c_str(), kTextSize);
    if (!font_) throw std::runtime_error(TTF_GetError());
    SDL_FillRect(target_.get(), nullptr, 0xFF000000);
  }
  ~SdlText() override {
    TTF_CloseFont(font_);
    TTF_Quit();
  }

  const char* Name() const override { return "SDL_ttf"; }

  double Measure(const TextLines& lines) override {
    double sum = 0;
    for (const TextLine& line : lines) {
      int width = 0;
      TTF_SizeUTF8(font_, line.text.c_str(), &width, nullptr);
      sum += width;
    }
    return sum;
  }

  bool Draw(const TextLines& lines) override {
    for (const TextLine& line : lines) {
      const Surface text(TTF_RenderUTF8_Blended(font_, line.text.c_str(), {0x33, 0x66, 0x99, 255}));
      SDL_Rect place = {line.x, line.y, 0, 0};
      SDL_BlitSurface(text.get(), nullptr, target_.get(), &place);
    }
    return true;
  }

  bool Read(uint32_t* out) override {
    std::memcpy(out, target_->pixels, size_t{kWidth} * kHeight * 4);
    return true;
  }

 private:
  Surface target_{SDL_CreateRGBSurfaceWithFormat(0, kWidth, kHeight, 32, SDL_PIXELFORMAT_ARGB8888)};
  TTF_Font* font_ = nullptr;
};

}  // namespace

std::unique_ptr<TextPeer> MakeSdlText() {
  return std::make_unique<SdlText>();
}

}  // namespace ZIRK::bench
