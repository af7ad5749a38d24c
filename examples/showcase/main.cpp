// The picture of the README: a balloonist's dashboard. It has photographs as rotated cards, sprites
// in front of them, translucent panels on the right with a chart, a dial, line art and bars, and
// text in several scripts.

#include <zirk/kit/kit.h>
#include <zirk/zirk.h>

#include <cmath>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "showcase/lettering.h"

using namespace ZIRK;
using namespace ZIRK::showcase;

namespace {

constexpr int kWidth = 1280, kHeight = 720;
constexpr float kPi = 3.14159265f, kRadiansPerDegree = kPi / 180;

constexpr VuColor kCoral{0xFFFF7A5C}, kGold{0xFFFFC857}, kMint{0xFF5CE1C4}, kSky{0xFF5AB0FF},
    kViolet{0xFFA27BFF}, kPale{0xB0FFFFFF};

const std::string kMedia = ZIRK_EXAMPLE_MEDIA;

using BitmapPtr = std::unique_ptr<VuBitmap>;
using kit::Mix, kit::Paint;

/// The means that several parts of the picture use.
struct Studio {
  VuGraphics& graphics;
  VuBitmap& screen;
  kit::Shapes& shapes;
  Lettering& lettering;
  BitmapPtr photo, balloon, disc;
};

BitmapPtr LoadPicture(VuGraphics& graphics, const char* name) {
  BitmapPtr picture(graphics.CreateBitmapFromFile((kMedia + name).c_str()));
  if (picture) picture->SetScaleMode(VuScaleMode::Bilinear);
  return picture;
}

/// A pseudo-random number in 0..1, the same in every run.
float Chance(uint32_t n) {
  n = (n ^ n >> 16) * 0x7FEB352Du;
  n = (n ^ n >> 15) * 0x846CA68Bu;
  return static_cast<float>((n ^ n >> 16) >> 8) / 16777216.0f;
}

/// A matrix that scales, rotates counter-clockwise, and moves (0, 0) to (x, y).
Matrix At(float x, float y, float degrees = 0, float scale = 1) {
  Matrix m;
  m.translate({x, y});
  if (degrees != 0) m.rotate(degrees * kRadiansPerDegree);
  if (scale != 1) m.scale({scale, scale});
  return m;
}

/// Makes a mask: a bitmap of this size on which `draw` has drawn.
template <typename F>
BitmapPtr MakeMask(VuGraphics& graphics, int width, int height, F&& draw) {
  BitmapPtr mask(graphics.CreateBitmap(width, height, VuPixelFormat::A8));
  draw(*mask);
  mask->SetScaleMode(VuScaleMode::Bilinear);
  return mask;
}

BitmapPtr MakeRoundedMask(VuGraphics& graphics, kit::Shapes& shapes, int width, int height,
                          float radius) {
  return MakeMask(graphics, width, height, [&](VuBitmap& mask) {
    shapes.FillRoundedRect(mask, {0, 0, width, height}, radius, white);
  });
}

class Light : kit::BlendingScope {
 public:
  explicit Light(VuBitmap& target)
      : BlendingScope(target, VuBlendingFactor::One, VuBlendingFactor::One) {}
};

void DrawGlow(const Studio& s, float x, float y, float size, VuColor color) {
  const Light light(s.screen);
  s.shapes.DrawGlow(s.screen, {x, y}, size / 2, color);
}

// --- Behind everything --------------------------------------------------------------------------

void DrawBackground(const Studio& s) {
  s.shapes.FillRect(s.screen, {0, 0, kWidth, kHeight}, Paint::Linear(0xFF0A1230, 0xFF35164F));
  DrawGlow(s, 120, 700, 1100, {0xFF7A2A4C});
  DrawGlow(s, 1240, 40, 1000, {0xFF17426E});
  DrawGlow(s, 640, 380, 900, {0xFF2A1C5A});
  for (uint32_t i = 0; i < 150; ++i) {
    const auto x = static_cast<int>(Chance(3 * i) * kWidth);
    const auto y = static_cast<int>(Chance(3 * i + 1) * kHeight);
    const auto alpha = static_cast<uint32_t>(30 + 130 * Chance(3 * i + 2));
    s.screen.DrawPoint({x, y}, i % 9 == 0 ? 2.0f : 1.0f, {alpha << 24 | 0xFFFFFF});
  }
}

/// Two families of lines, mirror images of each other, whose envelopes are curves.
void DrawLineArt(const Studio& s) {
  const Light light(s.screen);
  constexpr int kLines = 44;
  for (int i = 0; i <= kLines; ++i) {
    const float t = static_cast<float>(i) / kLines;
    const auto down = static_cast<int>(t * 420), right = static_cast<int>(t * 620);
    s.screen.DrawLine({0, 300 + down}, {right, kHeight - 1}, Mix({0xFF3A1430}, {0xFF16284E}, t));
    s.screen.DrawLine({kWidth - 1, 420 - down}, {kWidth - 1 - right, 0},
                      Mix({0xFF12304A}, {0xFF241240}, t));
  }
}

// --- Photographs --------------------------------------------------------------------------------

struct Card {
  float x, y, degrees;
  VuRect part;  ///< The part of the photograph.
  VuColor tint;
};

void DrawCards(const Studio& s) {
  constexpr int kCardWidth = 600, kCardHeight = 390, kFrame = 12, kShadow = 60;
  const BitmapPtr paper = MakeRoundedMask(s.graphics, s.shapes, kCardWidth, kCardHeight, 22);
  const BitmapPtr window =
      MakeRoundedMask(s.graphics, s.shapes, kCardWidth - 2 * kFrame, kCardHeight - 2 * kFrame, 12);
  const BitmapPtr shadow =
      MakeMask(s.graphics, kCardWidth + 2 * kShadow, kCardHeight + 2 * kShadow, [&](VuBitmap& m) {
        s.shapes.DrawShadow(m, {kShadow, kShadow, kCardWidth, kCardHeight}, 30, 42, white);
      });
  const VuRect sheet{-kCardWidth / 2, -kCardHeight / 2, kCardWidth, kCardHeight};
  const VuRect picture{sheet.x + kFrame, sheet.y + kFrame, sheet.width - 2 * kFrame,
                       sheet.height - 2 * kFrame};
  const VuRect shade{sheet.x - kShadow, sheet.y - kShadow, sheet.width + 2 * kShadow,
                     sheet.height + 2 * kShadow};
  const Card cards[] = {
      {452, 322, -13, {300, 0, 660, 420}, kMint},
      {428, 316, -5, {0, 0, 760, 480}, kViolet},
      {404, 312, 3, {60, 30, 860, 545}, white},
  };
  for (const Card& card : cards) {
    s.screen.DrawRect(shade, {0xB0040212}, At(card.x + 6, card.y + 22, card.degrees), *shadow,
                      nullptr);
    const Matrix place = At(card.x, card.y, card.degrees);
    s.screen.DrawRect(sheet, {0xFFF8F4EC}, place, *paper, nullptr);
    s.screen.DrawObject(picture, *s.photo, card.part, place, card.tint, *window, nullptr);
  }
}

/// Draws the title on the top photograph, with the same rotation.
void DrawTitle(const Studio& s) {
  const Matrix place = At(404, 312, 3);
  s.lettering.Title(s.screen, "Above the lake", {-216, 62}, {0xFFFFF2D8}, {0xC0241038}, place);
  s.lettering.Caption(s.screen, "Grüße · привет · γειά · こんにちは · 你好 · 안녕하세요",
                      {-212, 126}, {0xE0FFF2D8}, place);
}

/// A balloon with its burner alight.
void DrawBalloon(const Studio& s, float x, float y, float degrees, float scale, VuColor tint) {
  const VuRect all = s.balloon->GetBounds();
  const VuRect centred{-all.width / 2, -all.height / 2, all.width, all.height};
  const Matrix place = At(x, y, degrees, scale);
  s.screen.DrawObject(centred, *s.balloon, all, place, tint);
  const VuTVector2D<float> burner = place.transformVector(VuTVector2D<float>(0, 95));
  DrawGlow(s, burner.x(), burner.y(), 150 * scale, {0xFFFFA040});
  DrawGlow(s, burner.x(), burner.y(), 60 * scale, {0xFFFFE0A0});
}

void DrawBalloons(const Studio& s) {
  DrawBalloon(s, 196, 300, -2, 0.17f, {0xE8FFD9C0});
  DrawBalloon(s, 300, 236, 3, 0.22f, {0xF0FFE3A0});
  DrawBalloon(s, 372, 318, -4, 0.14f, {0xD8E0D0FF});
  DrawBalloon(s, 246, 190, 5, 0.38f, {0xFF86E8D2});
  DrawBalloon(s, 100, 470, 8, 0.62f, {0xFFFFCB66});
  DrawBalloon(s, 664, 232, -6, 1.16f, {0xFFFF8464});
}

// --- Below the photographs ----------------------------------------------------------------------

/// Round portraits, each cut out of its picture by a mask.
void DrawAvatars(const Studio& s) {
  constexpr int kSize = 84;
  const VuColor skies[] = {kSky, kGold, kViolet, kMint, kCoral};
  const VuColor tints[] = {{0xFFFF8464}, white, {0xFFFFCB66}, {0xFFB79BFF}, {0xFF86E8D2}};
  const char* names[] = {"Zoë", "Юлия", "Χλόη", "Åse", "あい"};
  for (int i = 0; i < 5; ++i) {
    const int x = 150 + i * 70, y = 586;
    s.lettering.Label(s.screen, names[i], {x + kSize / 2, y + kSize + 9}, kPale, Align::Centre);
    const kit::Point middle(static_cast<float>(x + kSize / 2), static_cast<float>(y + kSize / 2));
    s.shapes.FillDisc(s.screen, middle, kSize / 2 + 5, 0xFF21143E);
    s.shapes.FillDisc(s.screen, middle, kSize / 2,
                      Paint::Linear(Mix(skies[i], white, 0.45f), skies[i]));
    s.screen.DrawObject({x, y, kSize, kSize}, *s.balloon, {-40, -40, 320, 320}, VuTransform(),
                        tints[i], *s.disc, nullptr);
  }
}

/// Bars whose filled part is cut off by the clipping rectangle.
void DrawProgress(const Studio& s) {
  const VuRect pill{560, 590, 208, 14};
  const VuColor colors[][2] = {{kCoral, kGold}, {kViolet, kSky}, {kSky, kMint}};
  const float parts[] = {0.86f, 0.62f, 0.41f};
  const char* labels[][2] = {{"Gas", "86 %"}, {"Ballast", "62 %"}, {"Wind", "4.1 m/s"}};
  for (int i = 0; i < 3; ++i) {
    const VuRect bar{pill.x, pill.y + i * 38, pill.width, pill.height};
    s.lettering.Label(s.screen, labels[i][0], {bar.x + 2, bar.y - 18}, kPale);
    s.lettering.Label(s.screen, labels[i][1], {bar.x + bar.width - 2, bar.y - 18}, kPale,
                      Align::Right);
    const auto filled = static_cast<int>(parts[i] * static_cast<float>(bar.width));
    s.shapes.FillRoundedRect(s.screen, bar, 7, 0x2CFFFFFF);
    {
      const kit::ClippingScope part(s.screen, {bar.x, bar.y, filled, bar.height});
      s.shapes.FillRoundedRect(s.screen, bar, 7, Paint::Linear(colors[i][0], colors[i][1], 0));
    }
    DrawGlow(s, static_cast<float>(bar.x + filled), static_cast<float>(bar.y) + 7, 54,
             colors[i][1]);
  }
}

// --- Translucent panels -------------------------------------------------------------------------

void DrawPanel(const Studio& s, const VuRect& r) {
  constexpr float kRadius = 20;
  s.shapes.DrawShadow(s.screen, {r.x, r.y + 12, r.width, r.height}, kRadius, 30, 0x70040212);
  s.shapes.FillRoundedRect(s.screen, r, kRadius, 0xB0141434);
  s.shapes.FillRoundedRect(s.screen, r, kRadius, Paint::Linear(0x30C8D8FF, 0x0CC8D8FF));
  s.shapes.DrawRoundedRect(s.screen, r, kRadius, 1.2f, 0x50C8D8FF);
}

/// Height of a curve of the chart, 0 to 1.
float Climb(float t, float phase) {
  return 0.46f + 0.24f * std::sin(5.2f * t + phase) + 0.12f * std::sin(13 * t + 2.2f * phase) +
         0.22f * (t - 0.5f);
}

void DrawCurve(const Studio& s, const VuRect& r, float phase, VuColor color) {
  const auto left = static_cast<float>(r.x), top = static_cast<float>(r.y);
  const auto width = static_cast<float>(r.width), height = static_cast<float>(r.height);
  std::vector<kit::Point> points;
  for (float x = 0; x <= width; x += 4)
    points.emplace_back(left + x, top + height * (1 - Climb(x / width, phase)));
  const kit::Point end = points.back();
  const VuColor gone = color & 0xFFFFFF;
  for (int x = 0; x < r.width; ++x) {
    const float t = (static_cast<float>(x) + 0.5f) / width;
    const auto depth = static_cast<int>(std::lround(height * Climb(t, phase)));
    s.shapes.FillRect(s.screen, {r.x + x, r.y + r.height - depth, 1, depth},
                      Paint::Linear(gone | 0x78000000, gone));
  }
  s.shapes.DrawPolyline(s.screen, points, {2.6f, kit::Join::Round, kit::Cap::Round}, color);
  DrawGlow(s, end.x(), end.y(), 70, color);
  s.shapes.FillDisc(s.screen, end, 5, white);
}

void DrawChart(const Studio& s, const VuRect& panel) {
  DrawPanel(s, panel);
  s.lettering.Heading(s.screen, "Altitude", {panel.x + 24, panel.y + 14}, white);
  s.lettering.Label(s.screen, "↑ 1240 m", {panel.x + panel.width - 32, panel.y + 14}, kViolet,
                    Align::Right);
  const VuRect r{panel.x + 24, panel.y + 42, panel.width - 56, panel.height - 66};
  for (int i = 0; i <= 4; ++i)
    s.screen.DrawRect({r.x, r.y + i * r.height / 4, r.width, 1}, {0x1CFFFFFF});
  DrawCurve(s, r, 3.6f, kViolet);
  DrawCurve(s, r, 0.7f, kCoral);
}

/// Ticks rotated around the centre, and the sun of the photograph in the middle.
void DrawDial(const Studio& s, const VuRect& panel) {
  DrawPanel(s, panel);
  const float x = static_cast<float>(panel.x) + static_cast<float>(panel.width) / 2;
  const float y = static_cast<float>(panel.y) + static_cast<float>(panel.height) / 2;
  constexpr int kTicks = 60, kLit = 44;
  for (int i = 0; i < kTicks; ++i) {
    const float t = static_cast<float>(i) / (kTicks - 1);
    const float degrees = 240 - 300 * t;
    const VuColor lit = t < 0.5f ? Mix(kMint, kSky, t * 2) : Mix(kSky, kViolet, t * 2 - 1);
    const VuColor color = i < kLit ? lit : VuColor{0x30FFFFFF};
    const Matrix place = At(x, y, degrees);
    const auto at = [&](float radius) { return place.transformVector(kit::Point(radius, 0)); };
    s.shapes.DrawLine(s.screen, at(62), at(80), 3.6f, color);
    if (i == kLit - 1) DrawGlow(s, at(71).x(), at(71).y(), 80, lit);
  }
  s.lettering.Heading(s.screen, "73 %", {static_cast<int>(x), static_cast<int>(y) + 62}, white,
                      Align::Centre);
  const auto left = static_cast<int>(x) - 50, top = static_cast<int>(y) - 50;
  s.screen.DrawObject({left, top, 100, 100}, *s.photo, {514, 60, 220, 220}, VuTransform(), white,
                      *s.disc, nullptr);
}

/// Chords of a circle, each from an angle to twice that angle. Their envelope is a cardioid.
void DrawChords(const Studio& s, const VuRect& panel) {
  DrawPanel(s, panel);
  const float x = static_cast<float>(panel.x) + static_cast<float>(panel.width) / 2;
  const float y = static_cast<float>(panel.y) + static_cast<float>(panel.height) / 2;
  const auto pointAt = [&](float turn) {
    return VuPoint{static_cast<int>(std::lround(x + 80 * std::cos(2 * kPi * turn))),
                   static_cast<int>(std::lround(y - 80 * std::sin(2 * kPi * turn)))};
  };
  const Light light(s.screen);
  constexpr int kChords = 110;
  for (int i = 0; i < kChords; ++i) {
    const float t = static_cast<float>(i) / kChords;
    const VuColor color = Mix({0xFF70301C}, {0xFF1C4470}, 0.5f + 0.5f * std::cos(2 * kPi * t));
    s.screen.DrawLine(pointAt(t), pointAt(2 * t), color);
  }
}

void DrawBars(const Studio& s, const VuRect& panel) {
  DrawPanel(s, panel);
  s.lettering.Heading(s.screen, "Flights a week", {panel.x + 24, panel.y + 14}, white);
  const Paint usual = Paint::Linear(kMint, 0xFF2B5BD0), chosen = Paint::Linear(kGold, kCoral);
  const Paint mirrored = Paint::Linear(0x503C8CE0, 0x003C8CE0);
  constexpr int kBars = 22, kPitch = 16;
  const int bottom = panel.y + panel.height - 42, left = panel.x + 28;
  for (int i = 0; i < kBars; ++i) {
    const float wave = 0.5f + 0.5f * std::sin(0.55f * static_cast<float>(i) - 1.1f);
    const float size = 22 + 70 * wave + 26 * Chance(static_cast<uint32_t>(i) + 900);
    const auto height = static_cast<int>(size);
    const int x = left + i * kPitch;
    s.shapes.FillRect(s.screen, {x, bottom - height, 10, height}, i == 15 ? chosen : usual);
    s.shapes.FillRect(s.screen, {x, bottom + 3, 10, 24}, mirrored);
    s.screen.DrawRect({x, bottom - height - 6, 10, 2}, {0x90FFFFFF});
    if (i == 15) {
      DrawGlow(s, static_cast<float>(x) + 5, static_cast<float>(bottom - height), 90, kGold);
      s.lettering.Label(s.screen, "118", {x + 5, bottom - height - 26}, kGold, Align::Centre);
    }
  }
}

void DrawPoster(const Studio& s) {
  DrawBackground(s);
  DrawLineArt(s);
  DrawCards(s);
  DrawTitle(s);
  DrawAvatars(s);
  DrawProgress(s);
  DrawChart(s, {836, 52, 392, 194});
  DrawDial(s, {836, 266, 186, 186});
  DrawChords(s, {1042, 266, 186, 186});
  DrawBars(s, {836, 472, 392, 196});
  DrawBalloons(s);
}

/// Waits for a line of input: without a window system, the picture may disappear with the program.
void WaitForLine() {
  std::puts("shown; a line ends it");
  std::fflush(stdout);
  std::getchar();
}

}  // namespace

// showcase [<file> [<backend> [wait]]]
int main(int argc, char** argv) {
  // Without a name the backend that the environment asks for.
  const char* const backend = argc > 2 ? argv[2] : nullptr;
  const std::unique_ptr<VuGraphics> graphics(VuGraphics::Create(backend, false));
  if (!graphics) return 1;
  const BitmapPtr screen(graphics->CreateScreen(kWidth, kHeight, true));
  if (!screen) return 1;
  kit::Shapes shapes(*graphics);
  Lettering lettering(ZIRK_EXAMPLE_FONTS);
  const Studio studio{*graphics,
                      *screen,
                      shapes,
                      lettering,
                      LoadPicture(*graphics, "lake.jpg"),
                      LoadPicture(*graphics, "balloon.png"),
                      MakeRoundedMask(*graphics, shapes, 200, 200, 100)};
  if (!studio.photo || !studio.balloon) return 1;
  DrawPoster(studio);
  // Saved before it is shown, since the contents afterwards depend on the backend.
  const bool written = argc < 2 || kit::SavePng(*screen, argv[1]);
  screen->SwapBuffers();
  if (argc > 3) WaitForLine();
  return written ? 0 : 1;
}
