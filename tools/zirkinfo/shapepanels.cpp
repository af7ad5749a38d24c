#include <cmath>

#include "panels.h"

namespace ZIRK::zirkinfo {

namespace {

constexpr float kPi = 3.14159265f;

uint32_t Level(int step, int steps) {
  return static_cast<uint32_t>(step * 255 / (steps - 1));
}

}  // namespace

/// Bars, steps of grey, and a ramp of each channel: show a wrong order, a wrong depth and banding.
void DrawColours(const Easel& e) {
  constexpr uint32_t kBars[] = {0xFFFFFFFF, 0xFFFFFF00, 0xFF00FFFF, 0xFF00FF00,
                                0xFFFF00FF, 0xFFFF0000, 0xFF0000FF, 0xFF000000};
  for (int i = 0; i < 8; ++i) e.Rect(2 + i * 18, 2, 18, 28, VuColor{kBars[i]});
  for (int i = 0; i < 16; ++i)
    e.Rect(2 + i * 9, 32, 9, 14, VuColor{0xFF000000 | Level(i, 16) * 0x010101});
  constexpr uint32_t kChannels[] = {0x010000, 0x000100, 0x000001, 0x010101};
  for (int row = 0; row < 4; ++row)
    for (int x = 0; x < 144; ++x)
      e.Rect(2 + x, 48 + row * 12, 1, 11, VuColor{0xFF000000 | Level(x, 144) * kChannels[row]});
}

/// From transparent to opaque, continuously and in eight steps.
void DrawAlpha(const Easel& e) {
  e.Chequer(2, 2, 144, 92);
  const VuColor kColors[] = {kRed, kGreen, kBlue, white};
  for (int row = 0; row < 4; ++row) {
    for (int x = 0; x < 144; ++x)
      e.Rect(2 + x, 4 + row * 23, 1, 10, WithAlpha(kColors[row], Level(x, 144)));
    for (int step = 0; step < 8; ++step)
      e.Rect(2 + step * 18, 14 + row * 23, 18, 10, WithAlpha(kColors[row], Level(step, 8)));
  }
}

/// One pixel on, one off: lines, rectangles and points cover exactly their own pixels.
void DrawGrids(const Easel& e) {
  constexpr int kSize = 44;
  const auto line = [&](int i, bool isUpright, int x, int y, VuColor color) {
    if (isUpright) e.Line(x + i, y, x + i, y + kSize - 1, color);
    if (!isUpright) e.Line(x, y + i, x + kSize - 1, y + i, color);
  };
  for (int i = 0; i < kSize; i += 2) {
    line(i, true, 3, 3, white);
    line(i, false, 52, 3, white);
    for (int j = i % 4 / 2; j < kSize; j += 2) e.target.DrawPoint(e.At(101 + i, 3 + j), 1, white);
  }
  for (int i = 0; i < kSize; i += 4) {
    e.Rect(3 + i, 50, 1, kSize, kGold);
    e.Rect(3, 50 + i, kSize, 1, kGold);
    // Crossings are lighter, and each is drawn exactly once.
    line(i, true, 52, 50, {0x80FFFFFF});
    line(i, false, 52, 50, {0x80FFFFFF});
  }
  for (int size = 1, x = 0; x + size <= kSize; x += size + 2, ++size)
    for (int y = 0; y < 5; ++y)
      e.target.DrawPoint(e.At(101 + x + size / 2, 54 + y * 9), static_cast<float>(size), kGreen);
}

/// Lines of every slope from one centre, and pairs in opposite directions, which must coincide.
void DrawLines(const Easel& e) {
  constexpr int kSlopes = 36;
  for (int i = 0; i < kSlopes; ++i) {
    const float angle = static_cast<float>(i) * 2 * kPi / kSlopes;
    e.Line(47, 48, 47 + static_cast<int>(std::lround(44 * std::cos(angle))),
           48 + static_cast<int>(std::lround(44 * std::sin(angle))), i % 9 ? white : kGold);
  }
  for (int i = 0; i < 8; ++i) {
    e.Line(96, 4 + i * 3, 144, 4 + i * 12, WithAlpha(kGreen, 0x80));
    e.Line(144, 4 + i * 12, 96, 4 + i * 3, WithAlpha(kGreen, 0x80));
  }
  for (int i = 0; i < 5; ++i) e.Line(96 + i * 4, 92, 96 + i * 10, 50 + i * 2, kRed);
}

/// Sides and corners that meet without a gap or a seam; fractions of pixels; rotated slivers.
void DrawEdges(const Easel& e) {
  for (int i = 0; i < 12; ++i)
    e.Rect(3 + i * 2, 3 + i * 2, 48 - 4 * i, 48 - 4 * i, i % 2 ? kInk : white);
  for (int i = 0; i < 9; ++i)
    e.target.DrawRect({i % 3 * 9, i / 3 * 9, 9, 9}, WithAlpha(i % 2 ? kRed : kGold, 0x90),
                      e.Around(56, 4, 1.37f, 1.37f, 0));
  const VuTRect2D<float> dot(0, 0, 1, 1);
  for (int i = 0; i < 8; ++i) {
    const float quarters = 0.25f * static_cast<float>(i);
    const VuPoint at = e.At(98 + i % 4 * 12, 5 + i / 4 * 22);
    const VuTRect2D<float> bar(static_cast<float>(at.x) + quarters,
                               static_cast<float>(at.y) + quarters, 6.5f, 14);
    e.target.DrawObject(bar, *e.props.dot, dot, VuTMatrix2D<float>(), kGreen);
  }
  for (int i = 0; i < 9; ++i)
    e.target.DrawRect(
        {-20, -1, 40, 3}, white,
        e.Around(24 + i % 3 * 50, 62 + i / 3 * 13, 1, 1, static_cast<float>(i) * 1.5f));
}

/// Nothing is drawn outside the twelve rectangles, and each is filled up to its edges.
void DrawClipping(const Easel& e) {
  for (int i = 0; i < 12; ++i) {
    const int x = 4 + i % 4 * 36, y = 3 + i / 4 * 31;
    e.Rect(x - 1, y - 1, 34, 29, {0xFF58626C});
    e.Rect(x, y, 32, 27, kInk);
    e.target.SetClippingRect(e.At(x, y, 32, 27));
    e.target.DrawRect({-30, -8, 60, 16}, i % 2 ? kRed : kBlue,
                      e.Around(x + 16, y + 13, 1, 1, static_cast<float>(i) * 15));
    e.target.DrawObject(e.At(x + 22, y - 6, 24, 32), *e.props.letter);
    for (int j = 0; j < 4; ++j) e.Line(x - 20, y + j * 6 - 8, x + 60, y + j * 6 + 16, kGold);
    e.target.SetClippingRect(e.target.GetBounds());
  }
}

/// Every source factor, from left to right, with every destination factor, from the top down:
/// half-transparent orange drawn on half-transparent blue. On the right: additive blending, no
/// blending, and separate factors for alpha.
void DrawBlending(const Easel& e) {
  constexpr int kFactors = 15, kCell = 6, kSide = kFactors * kCell;
  constexpr auto kSaturate = static_cast<int>(VuBlendingFactor::SrcAlphaSaturate);
  e.Chequer(2, 2, 144, 92);
  const BitmapPtr sheet(e.graphics.CreateBitmap(144, kSide, VuPixelFormat::ARGB8888));
  if (!sheet) return;
  sheet->Clear({0x903060C0});
  sheet->SetBlendColor({0xA0408020});
  for (int dst = 0; dst < kFactors; ++dst)
    for (int src = 0; src < kFactors; ++src) {
      // Some GPUs do not support it as a destination factor.
      if (dst == kSaturate) continue;
      sheet->SetBlendingFunc(VuBlendingFactor(src), VuBlendingFactor(dst));
      sheet->DrawRect({src * kCell, dst * kCell, kCell - 1, kCell - 1}, {0xA0F08020});
    }
  sheet->SetBlendingFunc(VuBlendingFactor::One, VuBlendingFactor::One);
  sheet->DrawRect({94, 0, 48, 44}, kBlack);
  const VuPoint spots[] = {{98, 2}, {110, 2}, {104, 12}};
  const VuColor lights[] = {{0xFFFF0000}, {0xFF00FF00}, {0xFF0000FF}};
  for (int i = 0; i < 3; ++i)
    sheet->DrawRect({spots[i].x, spots[i].y, 28, 28}, lights[i], VuTransform(), *e.props.disc,
                    nullptr);
  sheet->SetBlendingFunc(VuBlendingFactor::SrcAlpha, VuBlendingFactor::One, VuBlendingFactor::Zero,
                         VuBlendingFactor::OneMinusSrcAlpha);
  sheet->DrawRect({94, 48, 22, 40}, {0x80F08020});
  sheet->SetBlendEnabled(false);
  sheet->DrawRect({120, 48, 22, 40}, {0x80F08020});
  e.target.DrawObject(e.At(3, 3, 144, kSide), *sheet);
}

}  // namespace ZIRK::zirkinfo
