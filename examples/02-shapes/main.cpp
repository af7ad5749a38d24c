// Points, lines and rectangles; transforms and matrices; blending. Four panels, left to right and
// top to bottom: a fan of lines, a ring of rotated rectangles, a matrix applied again and again,
// and coloured light that adds up.

#include <zirk/kit/pictures.h>
#include <zirk/zirk.h>

#include <memory>

using namespace ZIRK;

namespace {

constexpr int kPanel = 320;

void DrawFan(VuBitmap& screen, VuPoint corner) {
  for (int i = 0; i <= 16; ++i) {
    const int step = i * (kPanel - 40) / 16;
    const VuPoint from{corner.x + 20, corner.y + 20 + step};
    const VuPoint to{corner.x + 20 + step, corner.y + kPanel - 20};
    screen.DrawLine(from, to, {0xFF7FD1AE});
    screen.DrawPoint(from, 5, {0xFFFFFFFF});
  }
}

/// A transform turns a primitive around (0, 0), scales it, and moves it.
void DrawRing(VuBitmap& screen, VuPoint centre) {
  for (int i = 0; i < 24; ++i) {
    const float degrees = static_cast<float>(i) * 15;
    const VuTransform place(static_cast<float>(centre.x), static_cast<float>(centre.y), 1, 1,
                            degrees);
    const auto green = static_cast<uint32_t>(60 + i * 8);
    screen.DrawRect({60, -9, 75, 18}, {0xFF3000F0 | green << 8}, place);
  }
}

/// A matrix holds any affine transform. Each step acts before what is already in it, so every
/// square lies turned and shrunken inside the one before.
void DrawSpiral(VuBitmap& screen, VuPoint centre) {
  VuTMatrix2D<float> matrix;
  matrix.translate({static_cast<float>(centre.x), static_cast<float>(centre.y)});
  for (int i = 0; i < 20; ++i) {
    const VuColor color{i % 2 == 0 ? 0xFFF2B134 : 0xFF1B2838};
    screen.DrawRect({-120, -120, 240, 240}, color, matrix);
    matrix.rotate(0.14f);
    matrix.scale({0.87f, 0.87f});
  }
}

/// One and one: light is added to what is there.
void DrawLight(VuBitmap& screen, VuPoint centre) {
  screen.SetBlendingFunc(VuBlendingFactor::One, VuBlendingFactor::One);
  const VuColor colors[] = {{0xFFC02020}, {0xFF20C020}, {0xFF2020C0}};
  for (int i = 0; i < 3; ++i) {
    const VuTransform place(static_cast<float>(centre.x), static_cast<float>(centre.y), 1, 1,
                            static_cast<float>(i) * 120);
    screen.DrawRect({-55, -110, 110, 150}, colors[i], place);
  }
  screen.SetBlendingFunc(VuBlendingFactor::One, VuBlendingFactor::OneMinusSrcAlpha);
}

}  // namespace

int main(int argc, char** argv) {
  const std::unique_ptr<VuGraphics> graphics(VuGraphics::Create("FB", false));
  if (!graphics) return 1;
  const std::unique_ptr<VuBitmap> screen(graphics->CreateScreen(2 * kPanel, 2 * kPanel, false));
  if (!screen) return 1;

  screen->Clear({0xFF1B2838});
  DrawFan(*screen, {0, 0});
  DrawRing(*screen, {kPanel * 3 / 2, kPanel / 2});
  DrawSpiral(*screen, {kPanel / 2, kPanel * 3 / 2});
  DrawLight(*screen, {kPanel * 3 / 2, kPanel * 3 / 2});
  const bool done = argc < 2 || kit::SavePng(*screen, argv[1]);
  screen->SwapBuffers();
  return done ? 0 : 1;
}
