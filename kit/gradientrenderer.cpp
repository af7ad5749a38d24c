#include "gradientrenderer.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace ZIRK::kit {

namespace {

constexpr int32_t kQuarterTurn = 90 * 16;

/// Interpolates between two colours, premultiplied.
class Ramp {
 public:
  Ramp(VuColor from, VuColor to) : from_(Premultiplied(from)), way_(Premultiplied(to)) {
    for (size_t i = 0; i < way_.size(); ++i) way_[i] -= from_[i];
  }

  /// The colour at `t`, which is clamped to 0..1.
  uint32_t At(float t) const {
    t = std::clamp(t, 0.0f, 1.0f);
    uint32_t pixel = 0;
    for (size_t i = 0; i < way_.size(); ++i)
      pixel = pixel << 8 | static_cast<uint32_t>(from_[i] + way_[i] * t + 0.5f);
    return pixel;
  }

 private:
  using Channels = std::array<float, 4>;  ///< Alpha, red, green, blue.

  static Channels Premultiplied(VuColor color) {
    const auto channel = [=](int shift) { return static_cast<float>(color.argb >> shift & 255); };
    const float alpha = channel(24);
    return {alpha, channel(16) * alpha / 255, channel(8) * alpha / 255, channel(0) * alpha / 255};
  }

  Channels from_, way_;
};

/// Calls `placeAt(x, y)` with the centre of each pixel, relative to the centre of the gradient.
template <typename F>
void Fill(const Ramp& ramp, float width, float height, const VuRect& window, uint32_t* pixels,
          F&& placeAt) {
  for (int y = 0; y < window.height; ++y)
    for (int x = 0; x < window.width; ++x)
      *pixels++ = ramp.At(placeAt(static_cast<float>(window.x + x) + 0.5f - width / 2,
                                  static_cast<float>(window.y + y) + 0.5f - height / 2));
}

}  // namespace

void WriteGradient(Recipe& recipe, const Paint& paint, int width, int height) {
  recipe = {static_cast<int32_t>(Figure::Gradient),
            static_cast<int32_t>(paint.GetKind()),
            static_cast<int32_t>(paint.GetFrom().argb),
            static_cast<int32_t>(paint.GetTo().argb),
            paint.GetDirection(),
            IsLevel(paint) ? 1 : width,
            IsUpright(paint) ? 1 : height};
}

bool IsLevel(const Paint& paint) {
  return paint.GetKind() == Paint::Kind::Linear &&
         paint.GetDirection() % (2 * kQuarterTurn) == kQuarterTurn;
}

bool IsUpright(const Paint& paint) {
  return paint.GetKind() == Paint::Kind::Linear && paint.GetDirection() % (2 * kQuarterTurn) == 0;
}

void RenderGradient(const Recipe& recipe, const VuRect& window, uint32_t* pixels) {
  RecipeReader in(recipe);
  in.Number();
  const Paint::Kind kind{in.Number()};
  const VuColor from = static_cast<uint32_t>(in.Number()), to = static_cast<uint32_t>(in.Number());
  const int32_t direction = in.Number();
  const auto width = static_cast<float>(in.Number()), height = static_cast<float>(in.Number());
  const Ramp ramp(from, to);
  if (kind == Paint::Kind::Radial)
    return Fill(ramp, width, height, window, pixels,
                [=](float x, float y) { return std::hypot(2 * x / width, 2 * y / height); });
  const float angle = static_cast<float>(direction) / kQuarterTurn * 1.57079633f;
  const float dx = std::cos(angle), dy = -std::sin(angle);
  const float length = width * std::fabs(dx) + height * std::fabs(dy);
  Fill(ramp, width, height, window, pixels,
       [=](float x, float y) { return 0.5f + (x * dx + y * dy) / length; });
}

}  // namespace ZIRK::kit
