// A sheet to draw on with a finger or the mouse. Escape or the window's close button ends the
// program. The library has no input of its own: if SDL shows the screen, the events are SDL's;
// otherwise they are read from the kernel by libevdev.

#include <zirk/kit/pictures.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <thread>

#include "input.h"

using namespace ZIRK;

namespace {

constexpr int kWidth = 640, kHeight = 360;
constexpr auto kFrameTime = std::chrono::microseconds(16667);
constexpr VuColor kPaper{0xFFF4EFE4};

/// Keeps everything that was drawn, since a screen may not keep its last frame.
class Sheet {
 public:
  explicit Sheet(VuBitmap& paper) : paper_(paper) { paper_.Clear(kPaper); }

  void Take(const Touch& touch) {
    if (touch.isFirst) {
      color_ = color_ == 0xFF2E6FB0 ? VuColor{0xFFD9482B} : VuColor{0xFF2E6FB0};
      last_ = touch.at;
    }
    // Draws dots that overlap.
    const VuPoint way{touch.at.x - last_.x, touch.at.y - last_.y};
    const int steps = std::max({1, std::abs(way.x), std::abs(way.y)});
    for (int i = 0; i <= steps; i += 2)
      paper_.DrawRect({-4, -4, 8, 8}, color_,
                      VuTransform(static_cast<float>(last_.x + way.x * i / steps),
                                  static_cast<float>(last_.y + way.y * i / steps), 1, 1, 45));
    last_ = touch.at;
  }

 private:
  VuBitmap& paper_;
  VuColor color_{0xFFD9482B};
  VuPoint last_{0, 0};
};

/// Replaces the user when a picture is requested: two strokes, with one position per frame.
class Replay final : public Input {
 public:
  explicit Replay(VuRect screen) : screen_(screen) {}

  bool Read(std::vector<Touch>& touches) override {
    const double at = frame_ % kFrames / (kFrames - 1.0), turn = frame_ < kFrames ? 1 : -1;
    const double x = screen_.width * (0.1 + 0.8 * at);
    const double y = screen_.height * (0.5 + turn * 0.35 * std::sin(at * 6.283));
    touches.push_back({{static_cast<int>(x), static_cast<int>(y)}, frame_ % kFrames == 0});
    return ++frame_ <= 2 * kFrames;
  }

 private:
  static constexpr int kFrames = 30;
  VuRect screen_;
  int frame_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  std::unique_ptr<Input> input = PrepareInput(kWidth, kHeight);
  const std::unique_ptr<VuGraphics> graphics(VuGraphics::Create());
  if (!graphics) return 1;
  std::unique_ptr<VuBitmap> screen(graphics->CreateScreen(kWidth, kHeight, true));
  if (argc < 2 && screen && !IsInWindow()) {
    screen.reset();  // A touch screen covers all of its display, and so does the sheet.
    screen.reset(graphics->CreateScreen(true));
  }
  if (!screen) return 1;
  const VuRect bounds = screen->GetBounds();
  const std::unique_ptr<VuBitmap> paper(
      graphics->CreateBitmap(bounds.width, bounds.height, VuPixelFormat::ARGB8888));
  if (!paper) return 1;
  if (argc > 1)
    input = std::make_unique<Replay>(bounds);
  else
    input = OpenInput(std::move(input), bounds);
  if (!input) return 1;

  Sheet sheet(*paper);
  std::vector<Touch> touches;
  for (auto next = std::chrono::steady_clock::now(); input->Read(touches); touches.clear()) {
    for (const Touch& touch : touches) sheet.Take(touch);
    screen->DrawObject(bounds, *paper);
    screen->SwapBuffers();
    std::this_thread::sleep_until(next += kFrameTime);
  }
  return argc < 2 || kit::SavePng(*paper, argv[1]) ? 0 : 1;
}
