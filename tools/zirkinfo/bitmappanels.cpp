#include <cstring>
#include <vector>

#include "panels.h"

namespace ZIRK::zirkinfo {

namespace {

/// Sets the scale mode of a bitmap, and resets it at the end of a scope.
class Filtered {
 public:
  Filtered(VuBitmap& bitmap, VuScaleMode mode) : bitmap_(bitmap), before_(bitmap.GetScaleMode()) {
    bitmap_.SetScaleMode(mode);
  }
  ~Filtered() { bitmap_.SetScaleMode(before_); }
  Filtered(const Filtered&) = delete;
  Filtered& operator=(const Filtered&) = delete;

 private:
  VuBitmap& bitmap_;
  const VuScaleMode before_;
};

constexpr VuRect kLetterAround{-12, -16, 24, 32};

/// The positions of a format's channels: alpha, red, green, blue.
struct Layout {
  VuPixelFormat format;
  unsigned bytes;
  unsigned bits[4], shift[4];
};

constexpr Layout kLayouts[] = {
    {VuPixelFormat::ARGB8888, 4, {8, 8, 8, 8}, {24, 16, 8, 0}},
    {VuPixelFormat::XRGB8888, 4, {0, 8, 8, 8}, {0, 16, 8, 0}},
    {VuPixelFormat::RGB565, 2, {0, 5, 6, 5}, {0, 11, 5, 0}},
    {VuPixelFormat::ARGB4444, 2, {4, 4, 4, 4}, {12, 8, 4, 0}},
    {VuPixelFormat::ARGB1555, 2, {1, 5, 5, 5}, {15, 10, 5, 0}},
    {VuPixelFormat::A8, 1, {8, 0, 0, 0}, {0, 0, 0, 0}},
};
constexpr int kSwatchWidth = 44, kSwatchHeight = 42;

uint32_t SwatchPixel(const Layout& layout, int x, int y) {
  const bool hasSteps = layout.bits[0] > 1;
  const double alpha = hasSteps ? 1 - y / (kSwatchHeight - 1.0) : (x + y) / 8 % 2;
  const double light = (x % 11 + 1) / 11.0 * (layout.bits[0] ? alpha : 1);
  const int column = x / 11;
  const double channels[] = {alpha, column % 3 == 0 ? light : 0, column % 2 == 1 ? light : 0,
                             column >= 2 ? light : 0};
  uint32_t word = 0;
  for (int c = 0; c < 4; ++c)
    word |= static_cast<uint32_t>(channels[c] * ((1u << layout.bits[c]) - 1)) << layout.shift[c];
  return word;
}

/// Writes stripes, pixel by pixel, inside a border that keeps its pixels.
void DrawByAddress(VuBitmap& bitmap) {
  constexpr int kBorder = 8;
  if (!bitmap.Lock()) return;
  const VuBitmapInfo info = bitmap.GetInfo();
  // A backend that draws nothing has no pixels either.
  const int bottom = info.pixels ? info.height - kBorder : 0;
  for (int y = kBorder; y < bottom; ++y)
    for (int x = kBorder; x < info.width - kBorder; ++x) {
      const uint32_t color = (x + y) % 4 ? kInk.argb : kGold.argb;
      std::memcpy(static_cast<uint8_t*>(info.pixels) + ptrdiff_t{y} * info.pitch + ptrdiff_t{4} * x,
                  &color, 4);
    }
  bitmap.Unlock();
}

/// Pixels in the format itself, so that nothing is rounded.
std::vector<uint8_t> Swatch(const Layout& layout) {
  std::vector<uint8_t> pixels;
  for (int y = 0; y < kSwatchHeight; ++y)
    for (int x = 0; x < kSwatchWidth; ++x) {
      const uint32_t word = SwatchPixel(layout, x, y);
      const auto half = static_cast<uint16_t>(word);
      uint8_t bytes[4] = {static_cast<uint8_t>(word)};
      if (layout.bytes == 2) std::memcpy(bytes, &half, 2);
      if (layout.bytes == 4) std::memcpy(bytes, &word, 4);
      pixels.insert(pixels.end(), bytes, bytes + layout.bytes);
    }
  return pixels;
}

}  // namespace

/// Enlarged and reduced: Nearest above or on the left, Bilinear below or on the right.
void DrawScaled(const Easel& e) {
  for (const int i : {0, 1}) {
    const auto mode = VuScaleMode(i);
    const Filtered letter(*e.props.letter, mode), board(*e.props.board, mode);
    e.target.DrawObject(e.At(3 + i * 44, 3, 42, 56), *e.props.letter);
    e.target.DrawObject(e.At(92, 3 + i * 47, 43, 43), *e.props.board);
    e.target.DrawObject(e.At(3 + i * 44, 63, 42, 30), *e.props.letter, {3, 3, 7, 5});
    e.target.DrawObject(e.At(138, 3 + i * 47, 8, 43), *e.props.board, {8, 8, 2, 48});
  }
}

/// Rotated counter-clockwise from 0 to 180 degrees, Nearest above and Bilinear below.
void DrawTurned(const Easel& e) {
  constexpr float kDegrees[] = {0, 10, 40, 90, 160};
  for (const int row : {0, 1}) {
    const Filtered letter(*e.props.letter, VuScaleMode(row));
    for (int i = 0; i < 5; ++i)
      e.target.DrawObject(kLetterAround, *e.props.letter,
                          e.Around(16 + i * 29, 26 + row * 44, 1, 1, kDegrees[i]));
  }
}

/// Unchanged, mirrored horizontally, vertically, and both; then the same after a quarter turn.
void DrawMirrored(const Easel& e) {
  for (int i = 0; i < 8; ++i) {
    const float x = i % 2 ? -1.0f : 1.0f, y = i / 2 % 2 ? -1.0f : 1.0f;
    e.target.DrawObject(kLetterAround, *e.props.letter,
                        e.Around(20 + i % 4 * 36, 24 + i / 4 * 46, x, y, i < 4 ? 0.0f : 90.0f));
  }
}

/// Colour, bitmap and line through a disc; the disc turned, stretched and in parts; soft edges.
void DrawMasks(const Easel& e) {
  const VuBitmap& disc = *e.props.disc;
  const VuTransform none;
  e.target.DrawRect(e.At(4, 4, 40, 40), kGold, none, disc, nullptr);
  e.target.DrawObject(e.At(54, 4, 40, 40), *e.props.board, {0, 0, 64, 64}, none, white, disc,
                      nullptr);
  for (int i = 0; i < 14; ++i)
    e.target.DrawLine(e.At(104, 4 + i * 3), e.At(143, 4 + i * 3), white, none, disc, nullptr);
  // A quarter of the disc; the disc at four times the size of its rectangle, after a quarter turn.
  VuTVector2D<float> quarter[] = {{20, 0}, {40, 0}, {40, 20}, {20, 20}};
  e.target.DrawRect(e.At(4, 52, 40, 40), kRed, none, disc, quarter);
  VuTVector2D<float> turned[] = {{0, 40}, {0, 0}, {20, 0}, {20, 40}};
  e.target.DrawRect(e.At(54, 52, 40, 40), kGreen, none, disc, turned);
  e.target.DrawRect({-18, -14, 36, 28}, WithAlpha(kBlue, 0xC0), e.Around(124, 72, 1, 1, 30), disc,
                    nullptr);
}

/// Pixels in each of the six formats: red, green, blue and grey from left to right, with alpha
/// decreasing downwards if the format has alpha.
void DrawFormats(const Easel& e) {
  e.Chequer(2, 2, 144, 92);
  int i = 0;
  for (const Layout& layout : kLayouts) {
    const VuPoint at = e.At(4 + i % 3 * 48, 4 + i / 3 * 46);
    ++i;
    const BitmapPtr bitmap(e.graphics.CreateBitmap(kSwatchWidth, kSwatchHeight, layout.format));
    if (!bitmap) continue;
    const std::vector<uint8_t> pixels = Swatch(layout);
    bitmap->SetPixels(bitmap->GetBounds(), pixels.data(), kSwatchWidth * layout.bytes);
    e.target.DrawObject({at.x, at.y, kSwatchWidth, kSwatchHeight}, *bitmap);
  }
}

/// A bitmap multiplied with a colour of decreasing alpha.
void DrawTints(const Easel& e) {
  constexpr VuColor kColors[] = {{0xFFFFFFFF}, kRed, kGreen, kBlue, kGold, {0xFF808080}};
  e.Chequer(2, 2, 144, 92);
  for (int i = 0; i < 6; ++i)
    for (int row = 0; row < 3; ++row)
      e.target.DrawObject(
          e.At(2 + i * 24, row * 32, 24, 32), *e.props.letter, {0, 0, 12, 16}, VuTransform(),
          WithAlpha(kColors[i], static_cast<uint32_t>(row == 0 ? 255 : 200 - 64 * row)));
}

/// Pixels that are written, copied within and between bitmaps, read back, and written in a lock.
void DrawPixels(const Easel& e) {
  constexpr int kWidth = 68, kHeight = 44;
  const BitmapPtr written(e.graphics.CreateBitmap(kWidth, kHeight, VuPixelFormat::ARGB8888));
  const BitmapPtr copied(e.graphics.CreateBitmap(kWidth, kHeight, VuPixelFormat::ARGB8888));
  if (!written || !copied) return;
  std::vector<uint32_t> pixels;
  for (uint32_t y = 0; y < kHeight; ++y)
    for (uint32_t x = 0; x < kWidth; ++x)
      pixels.push_back(0xFF000000 | (x * y & 255) << 16 | (x * x / 20 & 255) << 8 | (y * 5 & 255));
  written->SetPixels(written->GetBounds(), pixels.data(), kWidth * 4);
  copied->CopyPixels({0, 0}, *written, {kWidth / 2, 0, kWidth / 2, kHeight});
  copied->CopyPixels({kWidth / 2, 4}, *copied, {0, 0, kWidth / 2, kHeight - 8});
  e.target.DrawObject(e.At(4, 3, kWidth, kHeight), *written);
  e.target.DrawObject(e.At(76, 3, kWidth, kHeight), *copied);

  // Reads back the pixels above, and draws them upside down.
  const VuRect part{0, 0, kWidth, kHeight};
  if (copied->GetPixels(part, pixels.data()))
    for (int y = 0; y < kHeight; ++y)
      copied->SetPixels({0, y, kWidth, 1}, &pixels[static_cast<size_t>((kHeight - 1 - y) * kWidth)],
                        kWidth * 4);
  e.target.DrawObject(e.At(4, 50, kWidth, kHeight), *copied);
  DrawByAddress(*written);
  e.target.DrawObject(e.At(76, 50, kWidth, kHeight), *written);
}

}  // namespace ZIRK::zirkinfo
