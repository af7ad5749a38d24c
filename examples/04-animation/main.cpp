// A bouncing formation of squares, four seconds long, with a progress line on the terminal. The
// library itself reports the frame rate once a second.

#include <zirk/kit/pictures.h>
#include <zirk/zirk.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <memory>
#include <thread>

using namespace ZIRK;

namespace {

constexpr int kWidth = 640, kHeight = 360;
constexpr int kFrames = 240;
constexpr auto kFrameTime = std::chrono::microseconds(16667);

void DrawFrame(VuBitmap& screen, int frame) {
  const float time = static_cast<float>(frame) / 60;
  screen.Clear({0xFF0E1420});
  for (int i = 0; i < 12; ++i) {
    const float phase = time * 2.2f + static_cast<float>(i) * 0.35f;
    const float x = 45 + static_cast<float>(i) * 50;
    const float y = 270 - 190 * std::fabs(std::sin(phase));
    const VuTransform place(x, y, 1, 1, phase * 80);
    const auto shade = static_cast<uint32_t>(90 + i * 14);
    screen.DrawRect({-17, -17, 34, 34}, {0xFFFF4060 | shade << 8}, place);
    screen.DrawRect({-17, 300, 34, 4}, {0x60FFFFFF}, VuTransform(x, 0, 1, 1, 0));
  }
}

void ShowProgress(int frame) {
  constexpr int kCells = 30;
  const int done = (frame + 1) * kCells / kFrames;
  std::printf("\r[%-*.*s] frame %d of %d", kCells, done, "##############################",
              frame + 1, kFrames);
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  const std::unique_ptr<VuGraphics> graphics(VuGraphics::Create("FB", false));
  if (!graphics) return 1;
  const std::unique_ptr<VuBitmap> screen(graphics->CreateScreen(kWidth, kHeight, true));
  if (!screen) return 1;

  LogFPS = true;
  // SwapBuffers() waits for the display. Without a display, the clock limits the rate.
  auto next = std::chrono::steady_clock::now();
  for (int frame = 0; frame < kFrames; ++frame) {
    DrawFrame(*screen, frame);
    // Saved before the swap, since the contents afterwards depend on the backend.
    if (frame + 1 == kFrames && argc > 1 && !kit::SavePng(*screen, argv[1])) return 1;
    screen->SwapBuffers();
    ShowProgress(frame);
    std::this_thread::sleep_until(next += kFrameTime);
  }
  std::printf("\n");
  return 0;
}
