#include <SDL.h>

#include "peer.h"

namespace ZIRK::bench {

namespace {

struct Release {
  void operator()(SDL_Surface* surface) const { SDL_FreeSurface(surface); }
  void operator()(SDL_Renderer* renderer) const { SDL_DestroyRenderer(renderer); }
  void operator()(SDL_Texture* texture) const { SDL_DestroyTexture(texture); }
};

Uint8 Channel(VuColor color, int shift) {
  return static_cast<Uint8>(color.argb >> shift & 255);
}

SDL_Rect ToRect(const VuRect& r) {
  return {r.x, r.y, r.width, r.height};
}

/// The software renderer. It blends colours that are not premultiplied, which comes to the same
/// on an opaque background.
class SdlPeer final : public MemoryPeer {
 public:
  SdlPeer()
      : surface_(SDL_CreateRGBSurfaceWithFormatFrom(Target(), kWidth, kHeight, 32, kPitch,
                                                    SDL_PIXELFORMAT_ARGB8888)) {
    SDL_SetHint(SDL_HINT_RENDER_BATCHING, "1");
    SDL_SetHint(SDL_HINT_RENDER_LINE_METHOD, "2");
    renderer_.reset(SDL_CreateSoftwareRenderer(surface_.get()));
    for (const Picture& p : sources_) {
      auto* const texture = SDL_CreateTexture(renderer_.get(), SDL_PIXELFORMAT_ARGB8888,
                                              SDL_TEXTUREACCESS_STATIC, p.width, p.height);
      SDL_UpdateTexture(texture, nullptr, p.Straight().data(), p.width * 4);
      SDL_SetTextureBlendMode(texture, p.opaque ? SDL_BLENDMODE_NONE : SDL_BLENDMODE_BLEND);
      pictures_.emplace_back(texture);
    }
  }

  const char* Name() const override { return "SDL"; }

  bool Fill(const Rects& places, VuColor color) override {
    SetColor(color);
    for (const VuRect& r : places) {
      const SDL_Rect rect = ToRect(r);
      SDL_RenderFillRect(renderer_.get(), &rect);
    }
    return Finish();
  }

  bool FillMasked(const Rects&, VuColor, MaskId) override { return false; }

  bool DrawLines(const Lines& lines, VuColor color) override {
    SetColor(color);
    for (const Line& l : lines)
      SDL_RenderDrawLine(renderer_.get(), l.from.x, l.from.y, l.to.x, l.to.y);
    return Finish();
  }

  bool Blit(const Rects& places, PictureId picture) override {
    for (const VuRect& r : places) {
      const SDL_Rect rect = ToRect(r);
      SDL_RenderCopy(renderer_.get(), pictures_[picture].get(), nullptr, &rect);
    }
    return Finish();
  }

  bool BlitTinted(const Rects& places, PictureId picture, const Colors& colors) override {
    SDL_Texture* const texture = pictures_[picture].get();
    for (size_t i = 0; i < places.size(); ++i) {
      const SDL_Rect rect = ToRect(places[i]);
      SDL_SetTextureColorMod(texture, Channel(colors[i], 16), Channel(colors[i], 8),
                             Channel(colors[i], 0));
      SDL_RenderCopy(renderer_.get(), texture, nullptr, &rect);
    }
    Finish();
    SDL_SetTextureColorMod(texture, 255, 255, 255);
    return true;
  }

  bool BlitMasked(const Rects&, PictureId, MaskId) override { return false; }

  bool BlitScaled(const Rects& places, PictureId picture, bool smooth) override {
    SDL_SetTextureScaleMode(pictures_[picture].get(),
                            smooth ? SDL_ScaleModeLinear : SDL_ScaleModeNearest);
    return Blit(places, picture);
  }

  bool BlitRotated(const Rects& places, PictureId picture, double degrees) override {
    SDL_Texture* const texture = pictures_[picture].get();
    SDL_SetTextureScaleMode(texture, SDL_ScaleModeLinear);
    const int width = sources_[picture].width, height = sources_[picture].height;
    for (const VuRect& r : places) {
      const SDL_Rect rect = {r.x + (r.width - width) / 2, r.y + (r.height - height) / 2, width,
                             height};
      SDL_RenderCopyEx(renderer_.get(), texture, nullptr, &rect, -degrees, nullptr, SDL_FLIP_NONE);
    }
    return Finish();
  }

 private:
  void SetColor(VuColor color) {
    const Uint8 alpha = Channel(color, 24);
    SDL_SetRenderDrawBlendMode(renderer_.get(),
                               alpha == 255 ? SDL_BLENDMODE_NONE : SDL_BLENDMODE_BLEND);
    SDL_SetRenderDrawColor(renderer_.get(), Channel(color, 16), Channel(color, 8),
                           Channel(color, 0), alpha);
  }

  bool Finish() { return SDL_RenderFlush(renderer_.get()) == 0; }

  const std::vector<Picture> sources_ = MakePictures();
  std::unique_ptr<SDL_Surface, Release> surface_;
  std::unique_ptr<SDL_Renderer, Release> renderer_;
  std::vector<std::unique_ptr<SDL_Texture, Release>> pictures_;
};

}  // namespace

std::unique_ptr<Peer> MakeSdlPeer() {
  return std::make_unique<SdlPeer>();
}

}  // namespace ZIRK::bench
