#include "showcase/brushes.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace ZIRK::showcase {

namespace {

constexpr float kRadiansPerDegree = 0.017453293f;

/// Distance from the edge of the shape, negative inside, at the centre of the pixel (x, y).
float DistanceFrom(const RoundedShape& s, int x, int y) {
  const float halfWidth = static_cast<float>(s.width) / 2,
              halfHeight = static_cast<float>(s.height) / 2;
  const float dx =
      std::fabs(static_cast<float>(x) + 0.5f - halfWidth) - (halfWidth - s.margin - s.radius);
  const float dy =
      std::fabs(static_cast<float>(y) + 0.5f - halfHeight) - (halfHeight - s.margin - s.radius);
  const float outside = std::hypot(std::fmax(dx, 0.0f), std::fmax(dy, 0.0f));
  return outside + std::fmin(std::fmax(dx, dy), 0.0f) - s.radius;
}

uint8_t ToCoverage(float v) {
  return static_cast<uint8_t>(std::lround(255 * std::clamp(v, 0.0f, 1.0f)));
}

/// A bitmap of coverage whose pixels `coverageAt(x, y)` computes, 0 to 1.
template <typename F>
BitmapPtr MakeCoverage(VuGraphics& graphics, int width, int height, F&& coverageAt) {
  std::vector<uint8_t> pixels;
  pixels.reserve(static_cast<size_t>(width) * static_cast<size_t>(height));
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) pixels.push_back(ToCoverage(coverageAt(x, y)));
  BitmapPtr bitmap(graphics.CreateBitmap(width, height, VuPixelFormat::A8));
  bitmap->SetPixels({0, 0, width, height}, pixels.data(), static_cast<unsigned>(width));
  bitmap->SetScaleMode(VuScaleMode::Bilinear);
  return bitmap;
}

/// 0 to 1 and level at both ends.
float Eased(float t) {
  t = std::clamp(t, 0.0f, 1.0f);
  return t * t * (3 - 2 * t);
}

}  // namespace

BitmapPtr MakeRounded(VuGraphics& graphics, const RoundedShape& shape) {
  return MakeCoverage(graphics, shape.width, shape.height, [&](int x, int y) {
    const float covered = 0.5f - DistanceFrom(shape, x, y) / shape.softness;
    return shape.softness > 1 ? Eased(covered) : covered;
  });
}

BitmapPtr MakeOutline(VuGraphics& graphics, const RoundedShape& shape, float line) {
  return MakeCoverage(graphics, shape.width, shape.height, [&](int x, int y) {
    const float fromMiddle = std::fabs(DistanceFrom(shape, x, y) + line / 2);
    return line / 2 + 0.5f - fromMiddle;
  });
}

BitmapPtr MakeGlow(VuGraphics& graphics, int size) {
  const float middle = static_cast<float>(size) / 2;
  return MakeCoverage(graphics, size, size, [=](int x, int y) {
    const float r =
        std::hypot(static_cast<float>(x) + 0.5f - middle, static_cast<float>(y) + 0.5f - middle) /
        middle;
    const float falling = std::fmax(0.0f, 1 - r);
    return falling * falling * (0.35f + 0.65f * std::exp(-9 * r * r));
  });
}

BitmapPtr MakeGradient(VuGraphics& graphics, VuColor first, VuColor last, bool isUpright) {
  constexpr int kSteps = 128;
  const int width = isUpright ? 1 : kSteps, height = isUpright ? kSteps : 1;
  BitmapPtr strip(graphics.CreateBitmap(width, height, VuPixelFormat::ARGB8888));
  strip->Clear();
  for (int i = 0; i < kSteps; ++i) {
    const VuColor color = Mix(first, last, static_cast<float>(i) / (kSteps - 1));
    strip->DrawRect({isUpright ? 0 : i, isUpright ? i : 0, 1, 1}, color);
  }
  strip->SetScaleMode(VuScaleMode::Bilinear);
  return strip;
}

VuColor Mix(VuColor a, VuColor b, float t) {
  uint32_t mixed = 0;
  for (unsigned shift = 0; shift < 32; shift += 8) {
    const auto from = static_cast<float>(a.argb >> shift & 255);
    const auto to = static_cast<float>(b.argb >> shift & 255);
    mixed |= static_cast<uint32_t>(std::lround(from + (to - from) * t)) << shift;
  }
  return {mixed};
}

Matrix At(float x, float y, float degrees, float scale) {
  Matrix m;
  m.translate({x, y});
  if (degrees != 0) m.rotate(degrees * kRadiansPerDegree);
  if (scale != 1) m.scale({scale, scale});
  return m;
}

void DrawStroke(VuBitmap& target, VuTVector2D<float> from, VuTVector2D<float> to, float width,
                VuColor color) {
  const VuTVector2D<float> along = to - from;
  Matrix m;
  m.translate(from);
  m.rotate(std::atan2(-along.y(), along.x()));
  m.scale({std::hypot(along.x(), along.y()) / 64, width / 64});
  // Scaled down from whole pixels, since rectangles have no fractions.
  target.DrawRect({0, -32, 64, 64}, color, m);
}

}  // namespace ZIRK::showcase
