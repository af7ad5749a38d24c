// Three layers that move separately: a small animated picture, enlarged to fill the display, a
// panel that slides in over it, and a cursor. Only the picture is redrawn for each frame; the
// others only get new positions.

#include <zirk/kit/pictures.h>
#include <zirk/zirk.h>

#include <cmath>
#include <memory>

using namespace ZIRK;

namespace {

constexpr int kWidth = 640, kHeight = 360;
constexpr int kVideoWidth = 160, kVideoHeight = 90;
constexpr int kPanelWidth = 360, kPanelHeight = 96;
constexpr int kCursorSize = 24;
constexpr int kFrames = 120;

enum Number { kDisplay, kVideo, kPanel, kCursor };

void DrawVideo(VuBitmap& screen, float time) {
  for (int x = 0; x < kVideoWidth; x += 2) {
    const float wave = std::sin(static_cast<float>(x) * 0.06f + time * 3);
    const auto shade = static_cast<uint32_t>(128 + 100 * wave);
    screen.DrawRect({x, 0, 2, kVideoHeight}, {0xFF000080 | shade / 4 << 16 | shade / 2 << 8});
  }
  screen.DrawRect(
      {-12, -12, 24, 24}, {0xC0FFFFFF},
      VuTransform(80 + 50 * std::cos(time), 45 + 20 * std::sin(time * 2), 1, 1, time * 60));
}

void DrawPanel(VuBitmap& screen) {
  screen.DrawRect({0, 0, kPanelWidth, kPanelHeight}, {0xC0101828});
  screen.DrawRect({0, 0, kPanelWidth, 3}, {0xFFFFC857});
  for (int i = 0; i < 5; ++i) {
    screen.DrawRect({20 + i * 66, 24, 54, 48}, {0xFF2E6FB0});
    screen.DrawRect({-8, -8, 16, 16}, {0xFFFFFFFF},
                    VuTransform(47.0f + static_cast<float>(i) * 66, 48, 1, 1, 45));
  }
}

void DrawCursor(VuBitmap& screen) {
  for (int y = 0; y < kCursorSize - 4; ++y) {
    screen.DrawLine({0, y}, {y * 2 / 3, y}, {0xFF000000});
    if (y > 2) screen.DrawLine({1, y - 1}, {y * 2 / 3 - 1, y - 1}, {0xFFFFFFFF});
  }
}

/// Sets all positions for a time in seconds.
void Arrange(float time) {
  const float in = std::fmin(1.0f, time);
  const int panelY = kHeight - static_cast<int>(in * in * (3 - 2 * in) * (kPanelHeight + 20));
  LayerDescription layers[3];
  layers[0].layer = kVideo;
  layers[0].blended = false;
  layers[1].layer = kPanel;
  layers[1].destination = {(kWidth - kPanelWidth) / 2, panelY, kPanelWidth, kPanelHeight};
  layers[1].order = 1;
  layers[1].opacity = 230;
  layers[2].layer = kCursor;
  layers[2].destination = {static_cast<int>(300 + 200 * std::sin(time)),
                           static_cast<int>(180 + 90 * std::cos(time * 1.3f)), kCursorSize,
                           kCursorSize};
  layers[2].order = 2;
  VuCompositor::SetConfiguration(layers, 3);
}

}  // namespace

int main(int argc, char** argv) {
  const std::unique_ptr<VuGraphics> graphics(VuGraphics::Create("OpenGLES2", false));
  if (!graphics) return 1;
  VuCompositor::Enable(true);
  const auto layer = [&](int width, int height, Number number) {
    return std::unique_ptr<VuBitmap>(
        graphics->CreateScreen(width, height, true, number, false, VuPixelFormat::ARGB8888));
  };
  // As large as the display, but not in the configuration, so it is not visible.
  const auto display = layer(kWidth, kHeight, kDisplay);
  const auto video = layer(kVideoWidth, kVideoHeight, kVideo);
  const auto panel = layer(kPanelWidth, kPanelHeight, kPanel);
  const auto cursor = layer(kCursorSize, kCursorSize, kCursor);
  if (!display || !video || !panel || !cursor) return 1;

  video->SetScaleMode(VuScaleMode::Bilinear);
  DrawPanel(*panel);
  DrawCursor(*cursor);
  for (int frame = 0; frame < kFrames; ++frame) {
    const float time = static_cast<float>(frame) / 60;
    Arrange(time);
    DrawVideo(*video, time);
    video->SwapBuffers();
  }
  // A layer can be read like any other screen, but the display cannot.
  const bool written = argc < 2 || kit::SavePng(*panel, argv[1]);
  VuCompositor::Enable(false);
  return written ? 0 : 1;
}
