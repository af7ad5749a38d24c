#include <zirk/kit/kit.h>

#include "gallery/scenes.h"

namespace ZIRK::gallery {

namespace {

using namespace kit;

constexpr VuColor kRed{0xFFE04030}, kGreen{0xFF30C060}, kYellow{0xFFF0D040}, kSky{0xFF5AB0FF},
    kHalfWhite{0x80FFFFFF};

void FilledShapes(VuGraphics& g, VuBitmap& t) {
  Shapes shapes(g);
  shapes.FillRoundedRect(t, {4, 4, 60, 30}, 8, kSky);
  shapes.FillRoundedRect(t, {70, 4, 50, 30}, {0, 15, 4, 9.5f}, kHalfWhite);
  shapes.FillRoundedRect(t, {126, 4, 60, 15}, 100, kGreen);
  shapes.DrawRoundedRect(t, {126, 22, 60, 15}, 5, 1.25f, kYellow);
  shapes.DrawRoundedRect(t, {4, 40, 60, 30}, {12, 3, 12, 0}, 3, kRed);
  for (int i = 0; i < 4; ++i) {
    const auto part = static_cast<float>(i) / 4;
    shapes.FillDisc(t, {80 + 13 * static_cast<float>(i) + part, 48 + part}, 2 + 1.5f * part * 4,
                    kYellow);
  }
  shapes.FillDisc(t, {98, 102}, 38.5f, 0x60FF60A0);
  shapes.DrawRing(t, {154, 66}, 24, 5, kSky);
  shapes.DrawRing(t, {154, 66}, 14, 0.5f, white);
  shapes.FillTriangle(t, {6, 138}, {30.5f, 78}, {52, 130.25f}, kGreen);
  shapes.FillPolygon(t, {{150, 96}, {184, 108}, {188, 130}, {160, 142}, {136, 118}}, kRed);
  t.SetClippingRect({60, 120, 80, 8});
  shapes.FillRoundedRect(t, {40, 100, 500, 60}, 20, kHalfWhite);
}

void LinesAndArcs(VuGraphics& g, VuBitmap& t) {
  Shapes shapes(g);
  const Join joins[] = {Join::Miter, Join::Round, Join::Bevel};
  const Cap caps[] = {Cap::Butt, Cap::Round, Cap::Square};
  for (int i = 0; i < 3; ++i) {
    const float x = 62 * static_cast<float>(i);
    const Stroke stroke(9, joins[i], caps[i]);
    shapes.DrawPolyline(t, {{x + 10, 40}, {x + 22, 12}, {x + 34, 40}, {x + 54, 36}}, stroke,
                        0xA0F0D040);
    shapes.DrawArc(t, {x + 30, 74}, 22, 7, 200, -220, kSky, caps[i]);
    shapes.DrawPolyline(t, {{x + 20, 66}, {x + 38, 66}, {x + 30, 82}}, {4, joins[i]}, kRed, true);
    for (int k = 0; k < 4; ++k) {
      const auto step = static_cast<float>(k);
      shapes.DrawLine(t, {x + 8, 96 + 5 * step}, {x + 56, 96 + 7 * step},
                      {0.5f + step / 2, Join::Bevel, caps[i]}, white);
    }
  }
  shapes.DrawPolyline(t, {{5, 140}, {60, 122}, {62, 140}, {6, 123}, {187, 132}}, 2.5f, kGreen);
}

void GradientsAndShadows(VuGraphics& g, VuBitmap& t) {
  Shapes shapes(g);
  t.DrawRect({0, 0, kWidth, kHeight}, 0xFFC8D0D8);
  shapes.DrawShadow(t, {12, 12, 60, 30}, 8, 8, 0xA0000000);
  shapes.FillRoundedRect(t, {10, 8, 60, 30}, 8, Paint::Linear(kSky, 0xFF2B5BD0));
  shapes.FillDisc(t, {104, 26}, 20, Paint::Radial(white, kRed));
  shapes.FillRect(t, {134, 6, 50, 40}, Paint::Linear(0xFF102030, kYellow, 30));
  shapes.DrawShadow(t, {20, 64, 24, 20}, {10, 0, 4, 0}, 14, 0xFF203060);
  shapes.DrawRing(t, {100, 76}, 22, 8, Paint::Linear(kGreen, 0x0030C060, 0));
  shapes.DrawPolyline(t, {{140, 94}, {150, 60}, {166, 90}, {184, 56}}, {5, Join::Round, Cap::Round},
                      Paint::Linear(kRed, kSky, 45));
  shapes.FillRoundedRect(t, {8, 112, 176, 10}, 5, Paint::Linear(kRed, kGreen, 180));
  const BlendingScope light(t, VuBlendingFactor::One, VuBlendingFactor::One);
  shapes.DrawGlow(t, {60.5f, 120}, 30, 0xFFFFA040);
  shapes.DrawGlow(t, {150, 128}, 9.25f, 0xFF4080FF);
}

}  // namespace

std::vector<Scene> ShapeScenes() {
  return {{"kit_shapes", FilledShapes},
          {"kit_lines", LinesAndArcs},
          {"kit_gradients", GradientsAndShadows}};
}

}  // namespace ZIRK::gallery
