// A thermostat for a touch panel of 800 x 480: a dial to drag, a switch, and a chart of the room's
// temperature. It runs at 60 frames per second, redraws only the panels that changed, and skips
// frames without changes.

#include <zirk/kit/kit.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <string>
#include <thread>

#include "07-input/input.h"

using namespace ZIRK;

namespace {

constexpr int kWidth = 800, kHeight = 480;
constexpr double kFrame = 1.0 / 60;  // seconds
constexpr VuColor kNight{0xFF101726}, kCard{0xFF1C2740}, kQuiet{0xFF8A97B0}, kWarm{0xFFFF8A5C},
    kCold{0xFF5AB0FF}, kGlass{0x28FFFFFF};
constexpr VuRect kDial{20, 20, 440, 440}, kRoom{480, 20, 300, 130}, kSwitch{480, 166, 300, 100},
    kChart{480, 282, 300, 178};

/// The heating of a room, which warms up and cools down faster than a real one.
struct Heating {
  double wanted = 21, room = 18.4;  // degrees
  bool isOn = true;
  std::vector<double> history{room};  // one value for each half second

  void Advance(double seconds) {
    const bool warms = isOn && room < wanted;
    room += seconds * (warms ? 0.35 : -0.06 * (room - 15));
    sinceLast_ += seconds;
    if (sinceLast_ < 0.5) return;
    sinceLast_ = 0;
    history.push_back(room);
    if (history.size() > kMostValues) history.erase(history.begin());
  }

  static constexpr size_t kMostValues = 120;

 private:
  double sinceLast_ = 0;
};

/// The dial. Its scale runs clockwise from the lower left to the lower right.
class Dial {
 public:
  static constexpr double kLeast = 10, kMost = 30;  // degrees of temperature
  static constexpr kit::Point kMiddle{240, 240};
  static constexpr float kRadius = 190, kFrom = 225, kSweep = -270;  // degrees of angle

  static float PartOf(double temperature) {
    return static_cast<float>((temperature - kLeast) / (kMost - kLeast));
  }
  static kit::Point At(double temperature, float radius) {
    const float angle = (kFrom + kSweep * PartOf(temperature)) * 0.0174533f;
    return kMiddle + kit::Point(std::cos(angle), -std::sin(angle)) * radius;
  }
  /// The temperature on the scale in the direction of `p`, rounded to half a degree.
  static double TemperatureAt(VuPoint p) {
    const double x = p.x - double{kMiddle.x()}, y = double{kMiddle.y()} - p.y;
    double turn = kFrom - std::atan2(y, x) * 57.29578;  // clockwise from the dial's beginning
    turn -= 360 * std::floor((turn + 45) / 360);
    const double part = std::clamp(turn / -kSweep, 0.0, 1.0);
    return std::round((kLeast + part * (kMost - kLeast)) * 2) / 2;
  }
};

class Dashboard {
 public:
  Dashboard(VuGraphics& graphics, VuBitmap& picture) : shapes_(graphics), picture_(picture) {
    picture_.Clear(kNight);
  }

  void Take(const Touch& touch) {
    if (touch.isFirst) {
      isDragging_ = Contains(kDial, touch.at);
      if (Contains(kSwitch, touch.at)) heating_.isOn = !heating_.isOn;
    }
    if (isDragging_) heating_.wanted = Dial::TemperatureAt(touch.at);
  }

  /// Advances by one frame. Returns false if it looks the same as the last one.
  bool Advance() {
    heating_.Advance(kFrame);
    pointer_ += (heating_.wanted - pointer_) * 0.2;
    knob_ += ((heating_.isOn ? 1 : 0) - knob_) * 0.25;
    const auto steps = [](double v, int n) { return static_cast<int>(std::lround(v * n)); };
    const int angle = steps(pointer_, 40), room = steps(heating_.room, 10);
    bool any =
        Redraw(dial_, kDial, (angle * 1000 + room) * 2 + heating_.isOn, &Dashboard::DrawDial);
    any |= Redraw(room_, kRoom, room, &Dashboard::DrawRoom);
    any |= Redraw(switch_, kSwitch, steps(knob_, 100), &Dashboard::DrawSwitch);
    any |= Redraw(chart_, kChart, ++frame_ / 30, &Dashboard::DrawChart);
    return any;
  }

 private:
  static bool Contains(const VuRect& r, VuPoint p) {
    return p.x >= r.x && p.x < r.x + r.width && p.y >= r.y && p.y < r.y + r.height;
  }

  /// Draws a panel if `state`, a number that stands for its contents, has changed.
  bool Redraw(int& shown, const VuRect& panel, int state, void (Dashboard::*draw)()) {
    if (shown == state) return false;
    shown = state;
    const kit::ClippingScope clipped(picture_, panel);
    picture_.DrawRect(panel, kNight);
    shapes_.FillRoundedRect(picture_, panel, 18, kCard);
    (this->*draw)();
    return true;
  }

  void DrawDial() {
    const bool warms = heating_.isOn && heating_.room < heating_.wanted;
    shapes_.DrawArc(picture_, Dial::kMiddle, Dial::kRadius, 18, Dial::kFrom, Dial::kSweep, kGlass,
                    kit::Cap::Round);
    shapes_.DrawArc(picture_, Dial::kMiddle, Dial::kRadius, 18, Dial::kFrom,
                    Dial::kSweep * Dial::PartOf(pointer_), kit::Paint::Linear(kCold, kWarm, 0),
                    kit::Cap::Round);
    for (double t = Dial::kLeast; t <= Dial::kMost; ++t)
      shapes_.DrawLine(picture_, Dial::At(t, 160), Dial::At(t, std::fmod(t, 5) == 0 ? 144 : 152), 2,
                       t <= heating_.room ? VuColor{white} : kQuiet);
    const kit::Point knob = Dial::At(pointer_, Dial::kRadius - 9);
    if (warms) shapes_.DrawGlow(picture_, knob, 44, kWarm);
    shapes_.FillDisc(picture_, knob, 16, white);
    Write(large_, Number(heating_.wanted), {kDial.x, 176, kDial.width, 110}, white);
    Write(small_,
          warms           ? "heating"
          : heating_.isOn ? "warm enough"
                          : "off",
          {kDial.x, 290, kDial.width, 30}, warms ? kWarm : kQuiet);
  }

  void DrawRoom() {
    Write(small_, "Room", {kRoom.x, kRoom.y + 14, kRoom.width, 24}, kQuiet);
    Write(medium_, Number(heating_.room), {kRoom.x, kRoom.y + 44, kRoom.width, 70}, white);
  }

  void DrawSwitch() {
    Write(small_, "Heating", {kSwitch.x, kSwitch.y, 170, kSwitch.height}, white);
    const VuRect body{kSwitch.x + 190, kSwitch.y + 30, 80, 40};
    const auto part = static_cast<float>(knob_);
    shapes_.FillRoundedRect(picture_, body, 20, kit::Mix(0xFF3A455C, kWarm, part));
    shapes_.FillDisc(picture_, {static_cast<float>(body.x) + 20 + 40 * part, 216}, 16, white);
  }

  void DrawChart() {
    Write(small_, "The last minute", {kChart.x, kChart.y + 12, kChart.width, 24}, kQuiet);
    for (int y = 330; y <= 440; y += 22)
      picture_.DrawRect({kChart.x + 20, y, kChart.width - 40, 1}, kGlass);
    points_.clear();
    for (size_t i = 0; i < heating_.history.size(); ++i) {
      const auto across = static_cast<float>(i) / Heating::kMostValues;
      points_.emplace_back(static_cast<float>(kChart.x + 20) + 260 * across,
                           440 - 110 * Dial::PartOf(heating_.history[i]));
    }
    shapes_.DrawPolyline(picture_, points_, {3, kit::Join::Round, kit::Cap::Round}, kWarm);
  }

  static std::string Number(double degrees) {
    char text[16];
    std::snprintf(text, sizeof text, "%.1f\u00B0", degrees);
    return text;
  }

  /// Writes text in the middle of a rectangle.
  void Write(const VuFont& font, std::string_view text, const VuRect& place, VuColor color) {
    kit::DrawText(picture_, font, text,
                  {place.x + (place.width - kit::GetWidth(font, text)) / 2,
                   place.y + (place.height - font.GetOneLineHeight()) / 2},
                  color);
  }

  Heating heating_;
  bool isDragging_ = false;
  double pointer_ = Dial::kLeast, knob_ = 0;  ///< Current values of the animations.
  int frame_ = -1;
  int dial_ = -1, room_ = -1, switch_ = -1, chart_ = -1;  ///< The panels as drawn last.
  kit::Shapes shapes_;
  VuBitmap& picture_;
  std::vector<kit::Point> points_;
  const VuFont small_{ZIRK_EXAMPLE_FONTS "sans.ttf", 0, 20};
  const VuFont medium_{ZIRK_EXAMPLE_FONTS "sansbold.ttf", 0, 48};
  const VuFont large_{ZIRK_EXAMPLE_FONTS "sansbold.ttf", 0, 84};
};

/// Replaces the user when a picture is requested: drags the dial, then waits.
class Replay final : public Input {
 public:
  bool Read(std::vector<Touch>& touches) override {
    const double wanted = 21 + 0.1 * std::min(frame_, 40);
    const kit::Point at = Dial::At(wanted, Dial::kRadius);
    if (frame_ <= 40)
      touches.push_back({{static_cast<int>(at.x()), static_cast<int>(at.y())}, frame_ == 0});
    return frame_++ < 900;
  }

 private:
  int frame_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  const bool replays = argc > 1;
  std::unique_ptr<Input> input = PrepareInput(kWidth, kHeight);
  // Pictures are drawn in memory, as fast as possible.
  const std::unique_ptr<VuGraphics> graphics(replays ? VuGraphics::Create("FB", false)
                                                     : VuGraphics::Create());
  if (!graphics) return 1;
  const std::unique_ptr<VuBitmap> screen(graphics->CreateScreen(kWidth, kHeight, true));
  const std::unique_ptr<VuBitmap> picture(
      graphics->CreateBitmap(kWidth, kHeight, VuPixelFormat::ARGB8888));
  if (!screen || !picture) return 1;
  if (replays)
    input = std::make_unique<Replay>();
  else
    input = OpenInput(std::move(input), screen->GetBounds());
  if (!input) return 1;

  Dashboard dashboard(*graphics, *picture);
  std::vector<Touch> touches;
  auto next = std::chrono::steady_clock::now();
  for (; input->Read(touches); touches.clear()) {
    for (const Touch& touch : touches) dashboard.Take(touch);
    if (dashboard.Advance()) {
      screen->DrawObject(screen->GetBounds(), *picture);
      screen->SwapBuffers();
    }
    next += std::chrono::microseconds(16667);
    if (!replays) std::this_thread::sleep_until(next);
  }
  return !replays || kit::SavePng(*picture, argv[1]) ? 0 : 1;
}
