// The OpenGL ES 2 backend beside SDL's OpenGL ES 2 renderer, on the same driver: what a draw call
// costs the processor. Items are clipped away or one pixel large, so that there is next to nothing
// to rasterise; only `Sprites32` and `Text50` (200 lines of 50 letters) draw all.

#include <SDL.h>
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <zirk/zirk.h>

#include <cstdio>
#include <memory>
#include <string>

#include "inputs.h"
#include "support/allocations.h"

namespace ZIRK::bench {
namespace {

struct Release {
  void operator()(SDL_Window* window) const { SDL_DestroyWindow(window); }
  void operator()(SDL_Renderer* renderer) const { SDL_DestroyRenderer(renderer); }
  void operator()(SDL_Texture* texture) const { SDL_DestroyTexture(texture); }
};

/// Without blanks, which need no drawing.
constexpr char kLine[] = "Sphinxofblackquartz,judgemyvow;0123456789/ABCDEFGH";

class Ours {
 public:
  static constexpr const char* kName = "ZIRK";

  bool Start(const Picture& picture) {
    graphics_.reset(VuGraphics::Create("OpenGLES2", false));
    if (!graphics_) return false;
    target_.reset(graphics_->CreateBitmap(kWidth, kHeight, VuPixelFormat::ARGB8888));
    picture_.reset(graphics_->CreateBitmap(picture.width, picture.height, VuPixelFormat::ARGB8888));
    return picture_->SetPixels(picture_->GetBounds(), picture.pixels.data(),
                               static_cast<unsigned>(picture.width * 4));
  }
  void Clip(const VuRect& rect) { target_->SetClippingRect(rect); }
  void Fill(const VuRect& rect) { target_->DrawRect(rect, VuColor{0xFF336699}); }
  /// Pixels of the picture as they are.
  void Blit(const VuRect& rect) {
    target_->DrawObject(rect, *picture_, VuRect{0, 0, rect.width, rect.height});
  }
  void Write(const VuRect& place) {
    target_->DrawText(*font_, kLine, {place.x, place.y}, VuColor{0xFFFFFFFF});
  }
  void Finish() { target_->Finish(); }

 private:
  std::unique_ptr<VuFont> font_{VuFont::CreateFont(ZIRK_BENCH_FONT, 0, 16)};
  std::unique_ptr<VuGraphics> graphics_;
  std::unique_ptr<VuBitmap> target_, picture_;
};

class Sdl {
 public:
  static constexpr const char* kName = "SDL";

  bool Start(const Picture& picture) {
    SDL_SetHint(SDL_HINT_RENDER_DRIVER, "opengles2");
    SDL_SetHint(SDL_HINT_RENDER_BATCHING, "1");
    window_.reset(SDL_CreateWindow("bench", 0, 0, 64, 64, SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN));
    renderer_.reset(SDL_CreateRenderer(window_.get(), -1, SDL_RENDERER_TARGETTEXTURE));
    if (!renderer_) return false;
    target_.reset(SDL_CreateTexture(renderer_.get(), SDL_PIXELFORMAT_ARGB8888,
                                    SDL_TEXTUREACCESS_TARGET, kWidth, kHeight));
    picture_.reset(SDL_CreateTexture(renderer_.get(), SDL_PIXELFORMAT_ARGB8888,
                                     SDL_TEXTUREACCESS_STATIC, picture.width, picture.height));
    SDL_UpdateTexture(picture_.get(), nullptr, picture.Straight().data(), picture.width * 4);
    SDL_SetTextureBlendMode(picture_.get(), SDL_BLENDMODE_BLEND);
    for (auto& letter : letters_) {
      letter.reset(SDL_CreateTexture(renderer_.get(), SDL_PIXELFORMAT_ARGB8888,
                                     SDL_TEXTUREACCESS_STATIC, 8, 14));
      SDL_UpdateTexture(letter.get(), nullptr, picture.Straight().data(), picture.width * 4);
      SDL_SetTextureBlendMode(letter.get(), SDL_BLENDMODE_BLEND);
    }
    SDL_SetRenderDrawColor(renderer_.get(), 0x33, 0x66, 0x99, 0xFF);
    return SDL_SetRenderTarget(renderer_.get(), target_.get()) == 0;
  }
  void Clip(const VuRect& rect) {
    const SDL_Rect clip = {rect.x, rect.y, rect.width, rect.height};
    SDL_RenderSetClipRect(renderer_.get(), &clip);
  }
  void Fill(const VuRect& r) {
    const SDL_Rect rect = {r.x, r.y, r.width, r.height};
    SDL_RenderFillRect(renderer_.get(), &rect);
  }
  void Blit(const VuRect& r) {
    const SDL_Rect rect = {r.x, r.y, r.width, r.height}, from = {0, 0, r.width, r.height};
    SDL_RenderCopy(renderer_.get(), picture_.get(), &from, &rect);
  }
  /// A texture for each letter, side by side.
  void Write(const VuRect& place) {
    SDL_Rect rect = {place.x, place.y, 8, 14};
    for (const char* letter = kLine; *letter; ++letter, rect.x += 8)
      SDL_RenderCopy(renderer_.get(), letters_[*letter % 64].get(), nullptr, &rect);
  }
  /// Reading a pixel waits until all is drawn.
  void Finish() {
    const SDL_Rect pixel = {0, 0, 1, 1};
    uint32_t out;
    SDL_RenderReadPixels(renderer_.get(), &pixel, SDL_PIXELFORMAT_ARGB8888, &out, 4);
  }

 private:
  std::unique_ptr<SDL_Window, Release> window_;
  std::unique_ptr<SDL_Renderer, Release> renderer_;
  std::unique_ptr<SDL_Texture, Release> target_, picture_, letters_[64];
};

constexpr VuRect kAll{0, 0, kWidth, kHeight};
constexpr VuRect kNowhere{kWidth - 1, kHeight - 1, 1, 1};

struct Operation {
  const char* name;
  int count, width, height;  ///< Of items, and of one.
  VuRect clip;
  enum { Blit, Fill, Write } kind;
  bool callsOnly = false;  ///< Not measured is how what has been collected goes to the driver.
};
constexpr Operation kOperations[] = {
    {"BlitClipped64", 10000, 64, 64, kNowhere, Operation::Blit},
    {"BlitCall", 4000, 1, 1, kAll, Operation::Blit, true},
    {"BlitPixel", 10000, 1, 1, kAll, Operation::Blit},
    {"FillClipped8", 10000, 8, 8, kNowhere, Operation::Fill},
    {"FillCall", 4000, 1, 1, kAll, Operation::Fill, true},
    {"FillPixel", 10000, 1, 1, kAll, Operation::Fill},
    {"Text50Clipped", 200, 8, 14, kNowhere, Operation::Write},
    {"Text50", 200, 8, 14, kAll, Operation::Write},
    {"Sprites32", 10000, 32, 32, kAll, Operation::Blit},
};

template <typename Peer>
void Register(Peer& peer) {
  for (const Operation& operation : kOperations) {
    const auto measure = [&peer, &operation](benchmark::State& state) {
      const Batch batch = MakeBatch(operation.count, operation.width, operation.height);
      peer.Clip(operation.clip);
      const int before = support::Allocations();
      for (auto _ : state) {
        for (const VuRect& place : batch.places)
          operation.kind == Operation::Blit   ? peer.Blit(place)
          : operation.kind == Operation::Fill ? peer.Fill(place)
                                              : peer.Write(place);
        if (operation.callsOnly) state.PauseTiming();
        peer.Finish();
        if (operation.callsOnly) state.ResumeTiming();
      }
      const int after = support::Allocations();
      state.SetItemsProcessed(state.iterations() * operation.count);
      state.counters["allocations"] =
          benchmark::Counter(static_cast<double>(after - before) / operation.count,
                             benchmark::Counter::kAvgIterations);
    };
    const std::string name = std::string(operation.name) + "/" + Peer::kName;
    auto* const registered = benchmark::RegisterBenchmark(name.c_str(), measure);
    registered->Unit(benchmark::kMicrosecond);
    // Most of the time is not measured.
    if (operation.callsOnly) registered->Iterations(100);
  }
}

int Run(int argc, char** argv) {
  const Picture picture = MakePictures()[Alpha64];
  Ours ours;
  Sdl sdl;
  if (!ours.Start(picture) || !sdl.Start(picture)) {
    std::fprintf(stderr, "no OpenGL ES 2 here: %s\n", SDL_GetError());
    return 1;
  }
  Register(ours);
  Register(sdl);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}

}  // namespace
}  // namespace ZIRK::bench

int main(int argc, char** argv) {
  ZIRK::LogLevel = 3;
  // What is measured is not how the allocator gives memory back to the kernel.
  mallopt(M_TRIM_THRESHOLD, 64 << 20);
  mallopt(M_MMAP_THRESHOLD, 32 << 20);
  return ZIRK::bench::Run(argc, argv);
}
