#include "panels.h"

#include <cmath>
#include <cstdint>
#include <vector>

namespace ZIRK::zirkinfo {

namespace {

BitmapPtr New(VuGraphics& graphics, int width, int height, VuPixelFormat format) {
  return BitmapPtr(graphics.CreateBitmap(width, height, format));
}

BitmapPtr MakeLetter(VuGraphics& graphics) {
  constexpr int kWidth = 12, kHeight = 16;
  constexpr const char* kShape[] = {"#######", "##    #", "##     ", "##     ", "#####  ",
                                    "##     ", "##     ", "##     ", "##     ", "##     "};
  BitmapPtr letter = New(graphics, kWidth, kHeight, VuPixelFormat::ARGB8888);
  if (!letter) return nullptr;
  for (int y = 0; y < kHeight; ++y)
    for (int x = 0; x < kWidth; ++x)
      letter->DrawRect({x, y, 1, 1}, (x / 2 + y / 2) % 2 ? kBlue : VuColor{0xFF24509C});
  for (int y = 0; y < 10; ++y)
    for (int x = 0; x < 7; ++x)
      if (kShape[y][x] == '#') letter->DrawRect({x + 3, y + 3, 1, 1}, white);
  letter->DrawRect({0, 0, kWidth, 1}, kRed);
  letter->DrawRect({0, kHeight - 1, kWidth, 1}, kGold);
  return letter;
}

BitmapPtr MakeBoard(VuGraphics& graphics) {
  constexpr int kSize = 64;
  BitmapPtr board = New(graphics, kSize, kSize, VuPixelFormat::ARGB8888);
  if (!board) return nullptr;
  for (int y = 0; y < kSize; y += 4)
    for (int x = 0; x < kSize; x += 4) {
      const auto shade = static_cast<uint32_t>(x * 3) << 16 | static_cast<uint32_t>(y * 3) << 8;
      board->DrawRect({x, y, 4, 4}, (x + y) % 8 ? white : VuColor{0xFF000040 | shade});
    }
  return board;
}

BitmapPtr MakeDisc(VuGraphics& graphics) {
  constexpr int kSize = 40;
  BitmapPtr disc = New(graphics, kSize, kSize, VuPixelFormat::A8);
  if (!disc) return nullptr;
  std::vector<uint8_t> coverage;
  for (int y = 0; y < kSize; ++y)
    for (int x = 0; x < kSize; ++x) {
      const double inside = kSize / 2.0 - std::hypot(x + 0.5 - kSize / 2.0, y + 0.5 - kSize / 2.0);
      coverage.push_back(
          static_cast<uint8_t>(std::lround(255 * std::fmin(1, std::fmax(0, inside)))));
    }
  disc->SetPixels({0, 0, kSize, kSize}, coverage.data(), kSize);
  disc->SetScaleMode(VuScaleMode::Bilinear);
  return disc;
}

BitmapPtr MakeDot(VuGraphics& graphics) {
  BitmapPtr dot = New(graphics, 1, 1, VuPixelFormat::ARGB8888);
  if (dot) dot->Clear(white);
  return dot;
}

}  // namespace

Props MakeProps(VuGraphics& graphics) {
  return {MakeLetter(graphics), MakeBoard(graphics), MakeDisc(graphics), MakeDot(graphics)};
}

void Easel::Chequer(int x, int y, int width, int height) const {
  constexpr int kCell = 6;
  const VuRect before = target.GetClippingRect();
  target.SetClippingRect(At(x, y, width, height));
  for (int row = 0; row < height; row += kCell)
    for (int column = 0; column < width; column += kCell)
      Rect(x + column, y + row, kCell, kCell,
           VuColor{(row + column) / kCell % 2 ? 0xFFB8B8B8 : 0xFF707070});
  target.SetClippingRect(before);
}

}  // namespace ZIRK::zirkinfo
