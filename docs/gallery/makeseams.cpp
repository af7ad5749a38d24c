// Makes docs/seams.png: squares that meet, with and without seams. Eight times as large as drawn.
//
//     zirk_make_seams SEAMS.png

#include <zirk/kit/pictures.h>
#include <zirk/zirk.h>

#include <cmath>
#include <cstdio>
#include <memory>

namespace {

using namespace ZIRK;

constexpr int kTiles = 3, kSide = 20, kPanels = 4, kMagnified = 8;
constexpr float kTile = 4.6f;

const VuColor kGround{0xFF182838}, kColour{0xFFFFC860};

/// Draws squares that meet, `at(i)` being the edge of number `i`.
template <class Edge>
void DrawTiles(VuBitmap& target, const VuBitmap& colour, const VuTMatrix2D<float>& m, Edge at) {
  for (int y = 0; y < kTiles; ++y)
    for (int x = 0; x < kTiles; ++x)
      target.DrawObject(VuTRect2D<float>({at(x), at(y)}, {at(x + 1), at(y + 1)}), colour,
                        VuTRect2D<float>(0, 0, 1, 1), m, white);
}

}  // namespace

int main(int argc, char** argv) {
  const std::unique_ptr<VuGraphics> graphics(VuGraphics::Create("FB", false));
  if (argc != 2 || !graphics) return 2;
  const auto make = [&](int width, int height, VuColor colour) {
    std::unique_ptr<VuBitmap> bitmap(
        graphics->CreateBitmap(width, height, VuPixelFormat::ARGB8888));
    bitmap->Clear(colour);
    return bitmap;
  };
  const auto panels = make(kPanels * kSide, kSide, kGround), colour = make(1, 1, kColour);
  const auto exact = [](int i) { return 2 + static_cast<float>(i) * kTile; };
  const auto whole = [&](int i) { return std::round(exact(i)); };
  const auto movedTo = [](int panel, float degrees) {
    return VuTMatrix2D<float>(
        VuTransform(static_cast<float>(panel * kSide), degrees > 0 ? 4.0f : 0.0f, 1, 1, degrees));
  };
  DrawTiles(*panels, *colour, movedTo(0, 0), exact);
  DrawTiles(*panels, *colour, movedTo(1, 0), whole);
  DrawTiles(*panels, *colour, movedTo(2, 12), whole);
  const auto tiles = make(kSide, kSide, VuColor{0});
  DrawTiles(*tiles, *colour, movedTo(0, 0), whole);
  tiles->SetScaleMode(VuScaleMode::Bilinear);
  panels->DrawObject(VuRect{0, 0, kSide, kSide}, *tiles, movedTo(3, 12));

  const auto large = make(kPanels * kSide * kMagnified, kSide * kMagnified, kGround);
  large->DrawObject(large->GetBounds(), *panels);
  return kit::SavePng(*large, argv[1]) ? 0 : 1;
}
