// Parts of a user interface, drawn by the kit: a button, a switch and a slider, a gauge, a chart,
// lamps and a compass. Each recipe draws on its own panel, in coordinates of the panel.

#include <zirk/kit/kit.h>
#include <zirk/zirk.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <vector>

using namespace ZIRK;

namespace {

constexpr int kPanelWidth = 240, kPanelHeight = 160, kColumns = 3, kRows = 2;
constexpr VuColor kNight{0xFF141C2B}, kSky{0xFF5AB0FF}, kDeep{0xFF2B5BD0}, kMint{0xFF5CE1C4},
    kCoral{0xFFFF7A5C}, kGold{0xFFFFC857}, kGlass{0x28FFFFFF};

//! [button]
/// From the bottom up: the shadow, the body, a line of light along its edge, and the sign.
void DrawButton(kit::Shapes& shapes, VuBitmap& panel) {
  const VuRect button{30, 50, 180, 56};
  shapes.DrawShadow(panel, {button.x, button.y + 8, button.width, button.height}, 16, 14,
                    0xC0000000);
  shapes.FillRoundedRect(panel, button, 16, kit::Paint::Linear(kSky, kDeep));
  shapes.DrawRoundedRect(panel, button, 16, 1.5f, kit::Paint::Linear(0x90FFFFFF, 0x00FFFFFF));
  shapes.FillTriangle(panel, {108, 64}, {108, 92}, {132, 78}, white);
}
//! [button]

//! [switch]
/// A switch is a rectangle with radii that are as large as can be; a slider is two, and a disc.
void DrawSwitch(kit::Shapes& shapes, VuBitmap& panel) {
  constexpr float kRound = 100;
  shapes.FillRoundedRect(panel, {84, 36, 72, 36}, kRound, kMint);
  shapes.DrawShadow(panel, {122, 42, 28, 28}, kRound, 5, 0x90000000);
  shapes.FillDisc(panel, {138, 54}, 15, white);

  shapes.FillRoundedRect(panel, {30, 112, 180, 8}, kRound, kGlass);
  shapes.FillRoundedRect(panel, {30, 112, 104, 8}, kRound, kit::Paint::Linear(kSky, kMint, 0));
  shapes.FillDisc(panel, {134, 116}, 11, white);
  shapes.DrawRing(panel, {134, 116}, 11, 3, kMint);
}
//! [switch]

//! [gauge]
/// An arc for the scale and one for the value, ticks, and a needle with round ends.
void DrawGauge(kit::Shapes& shapes, VuBitmap& panel) {
  const kit::Point middle(120, 96);
  constexpr float kFrom = 210, kSweep = -240, kValue = 0.68f;
  shapes.DrawArc(panel, middle, 76, 12, kFrom, kSweep, kGlass, kit::Cap::Round);
  shapes.DrawArc(panel, middle, 76, 12, kFrom, kSweep * kValue,
                 kit::Paint::Linear(kMint, kCoral, 0), kit::Cap::Round);
  const auto at = [&](float value, float radius) {
    const float angle = (kFrom + kSweep * value) * 0.0174533f;
    return middle + kit::Point(std::cos(angle), -std::sin(angle)) * radius;
  };
  for (int i = 0; i <= 8; ++i) {
    const float value = static_cast<float>(i) / 8;
    shapes.DrawLine(panel, at(value, 58), at(value, 52), 2, 0x80FFFFFF);
  }
  shapes.DrawLine(panel, middle, at(kValue, 46), {5, kit::Join::Round, kit::Cap::Round}, white);
  shapes.FillDisc(panel, middle, 8, white);
}
//! [gauge]

//! [chart]
/// One call draws a curve of many points, so that its joints are drawn once.
void DrawChart(kit::Shapes& shapes, VuBitmap& panel) {
  for (int y = 40; y <= 120; y += 20) panel.DrawRect({24, y, 192, 1}, kGlass);
  const auto curve = [](float phase) {
    std::vector<kit::Point> points;
    for (int x = 24; x <= 216; x += 4) {
      const float t = static_cast<float>(x) * 0.04f + phase;
      points.emplace_back(static_cast<float>(x), 80 - 22 * std::sin(t) - 12 * std::sin(2.3f * t));
    }
    return points;
  };
  const kit::Stroke line(3, kit::Join::Round, kit::Cap::Round);
  shapes.DrawPolyline(panel, curve(2.5f), line, 0xA05AB0FF);
  const std::vector<kit::Point> points = curve(0);
  shapes.DrawPolyline(panel, points, line, kit::Paint::Linear(kCoral, kGold, 90));
  shapes.FillDisc(panel, points.back(), 5, white);
}
//! [chart]

//! [lamps]
/// Light adds to what is there: a glow under a blending scope, then the lamp with a highlight.
void DrawLamps(kit::Shapes& shapes, VuBitmap& panel) {
  const VuColor colors[] = {kCoral, kGold, kMint};
  for (int i = 0; i < 3; ++i) {
    const kit::Point middle(60 + 60 * static_cast<float>(i), 80);
    const VuColor dark = kit::Mix(colors[i], kNight, 0.7f);
    const bool lit = i != 1;
    if (lit) {
      const kit::BlendingScope light(panel, VuBlendingFactor::One, VuBlendingFactor::One);
      shapes.DrawGlow(panel, middle, 58, colors[i]);
    }
    shapes.FillDisc(panel, middle, 18,
                    kit::Paint::Radial(lit ? white : dark, lit ? colors[i] : dark));
    shapes.DrawRing(panel, middle, 21, 2.5f, 0x60FFFFFF);
  }
}
//! [lamps]

//! [compass]
/// Polygons of the application's own points.
void DrawCompass(kit::Shapes& shapes, VuBitmap& panel) {
  const kit::Point middle(120, 80);
  shapes.FillDisc(panel, middle, 64, kit::Paint::Radial(0xFF2A3A58, 0xFF1B2638));
  shapes.DrawRing(panel, middle, 64, 3, kSky);
  const kit::Point along(0.5f, -0.866f), side(0.866f, 0.5f);
  const kit::Point north = middle + along * 52.0f, south = middle - along * 52.0f;
  const kit::Point left = middle - side * 13.0f, right = middle + side * 13.0f;
  shapes.FillTriangle(panel, north, left, middle, kCoral);
  shapes.FillTriangle(panel, north, right, middle, kit::Mix(kCoral, 0xFF000000, 0.3f));
  shapes.FillTriangle(panel, south, left, middle, 0xFFC8D0D8);
  shapes.FillTriangle(panel, south, right, middle, white);
  const kit::Point frame[] = {{20, 20}, {220, 20}, {220, 140}, {20, 140}};
  shapes.DrawPolyline(panel, {frame, 4}, {4, kit::Join::Bevel}, kGlass, true);
}
//! [compass]

struct Recipe {
  const char* name;
  void (*draw)(kit::Shapes& shapes, VuBitmap& panel);
};
constexpr Recipe kRecipes[] = {{"button", DrawButton}, {"switch", DrawSwitch},
                               {"gauge", DrawGauge},   {"chart", DrawChart},
                               {"lamps", DrawLamps},   {"compass", DrawCompass}};

}  // namespace

// 08-shapes [<file> [<recipe>]]
int main(int argc, char** argv) {
  const std::unique_ptr<VuGraphics> graphics(VuGraphics::Create("FB", false));
  if (!graphics) return 1;
  const std::unique_ptr<VuBitmap> screen(
      graphics->CreateScreen(kColumns * kPanelWidth, kRows * kPanelHeight, false));
  const std::unique_ptr<VuBitmap> panel(
      graphics->CreateBitmap(kPanelWidth, kPanelHeight, VuPixelFormat::ARGB8888));
  if (!screen || !panel) return 1;

  kit::Shapes shapes(*graphics);
  bool done = true;
  int place = 0;
  for (const Recipe& recipe : kRecipes) {
    panel->Clear(kNight);
    recipe.draw(shapes, *panel);
    screen->DrawObject({place % kColumns * kPanelWidth, place / kColumns * kPanelHeight,
                        kPanelWidth, kPanelHeight},
                       *panel);
    ++place;
    if (argc > 2 && std::strcmp(argv[2], recipe.name) == 0) done = kit::SavePng(*panel, argv[1]);
  }
  if (argc == 2) done = kit::SavePng(*screen, argv[1]);
  screen->SwapBuffers();
  return done ? 0 : 1;
}
