#include "support/workloads.h"

#include <cstdint>

namespace ZIRK::support {

namespace {

constexpr int kSpriteSize = 128;
constexpr char kLine[] = "The quick brown fox jumps over the lazy dog.";
constexpr int kTextSize = 16;

/// A rectangle of this size inside the screen, different for each `i`.
VuRect PlaceOf(const VuBitmap& screen, int i, int width, int height) {
  const VuRect bounds = screen.GetBounds();
  const int right = bounds.width - width, bottom = bounds.height - height;
  return {right > 0 ? i * 37 % right : 0, bottom > 0 ? i * 23 % bottom : 0, width, height};
}

/// Draws opaque rectangles.
double DrawFills(Stage& stage) {
  constexpr int kCount = 20, kWidth = 200, kHeight = 150;
  for (int i = 0; i < kCount; ++i)
    stage.screen.DrawRect(PlaceOf(stage.screen, i, kWidth, kHeight),
                          0xFF000000 | static_cast<uint32_t>(i) * 0x0A0703);
  stage.screen.Finish();
  return kCount * kWidth * kHeight * 1e-6;
}

/// Draws a translucent bitmap at its own size.
double DrawBlits(Stage& stage) {
  constexpr int kCount = 20;
  for (int i = 0; i < kCount; ++i)
    stage.screen.DrawObject(PlaceOf(stage.screen, i, kSpriteSize, kSpriteSize), *stage.sprite);
  stage.screen.Finish();
  return kCount * kSpriteSize * kSpriteSize * 1e-6;
}

double DrawLines(Stage& stage) {
  constexpr int kCount = 20;
  for (int i = 0; i < kCount; ++i) {
    const VuRect place = PlaceOf(stage.screen, i, 350, kTextSize);
    stage.screen.DrawText(*stage.font, kLine, {place.x, place.y}, white);
  }
  stage.screen.Finish();
  return kCount * (sizeof kLine - 1) * 1e-3;
}

/// Draws a bitmap enlarged by half, with bilinear filtering.
double DrawScaled(Stage& stage) {
  constexpr int kCount = 10, kSize = kSpriteSize * 3 / 2;
  stage.sprite->SetScaleMode(VuScaleMode::Bilinear);
  for (int i = 0; i < kCount; ++i)
    stage.screen.DrawObject(PlaceOf(stage.screen, i, kSize, kSize), *stage.sprite);
  stage.sprite->SetScaleMode(VuScaleMode::Nearest);
  stage.screen.Finish();
  return kCount * kSize * kSize * 1e-6;
}

/// Draws and shows a frame of a typical user interface.
double DrawFrame(Stage& stage) {
  stage.screen.Clear(0xFF203040);
  for (int i = 0; i < 20; ++i) stage.screen.DrawRect(PlaceOf(stage.screen, i, 80, 40), 0xC0FFC857);
  for (int i = 0; i < 6; ++i)
    stage.screen.DrawObject(PlaceOf(stage.screen, i, kSpriteSize, kSpriteSize), *stage.sprite);
  for (int i = 0; stage.font && i < 6; ++i)
    stage.screen.DrawText(*stage.font, kLine, {10, 10 + 24 * i}, white);
  stage.screen.Finish();  // Off-screen OpenGL may skip a frame that is not visible.
  stage.screen.SwapBuffers();
  return 1;
}

}  // namespace

const Workload kWorkloads[kWorkloadCount] = {
    {"fills", "Mpixel/s", false, DrawFills}, {"blits", "Mpixel/s", false, DrawBlits},
    {"text", "kglyph/s", true, DrawLines},   {"scaling", "Mpixel/s", false, DrawScaled},
    {"frame", "frames/s", false, DrawFrame},
};

Stage MakeStage(VuGraphics& graphics, VuBitmap& screen, const std::string& fontFile) {
  Stage stage{screen, nullptr, nullptr};
  stage.sprite.reset(graphics.CreateBitmap(kSpriteSize, kSpriteSize, VuPixelFormat::ARGB8888));
  for (int y = 0; stage.sprite && y < kSpriteSize; y += 4)
    for (int x = 0; x < kSpriteSize; x += 4)
      stage.sprite->DrawRect({x, y, 4, 4}, static_cast<uint32_t>(x + y) << 24 | 0x60A0E0);
  if (!fontFile.empty()) stage.font = std::make_unique<VuFont>(fontFile.c_str(), 0, kTextSize);
  return stage;
}

}  // namespace ZIRK::support
