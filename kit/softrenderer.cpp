#include "softrenderer.h"

#include <algorithm>
#include <cmath>

namespace ZIRK::kit {

namespace {

uint8_t ToCoverage(float part) {
  return static_cast<uint8_t>(std::clamp(part, 0.0f, 1.0f) * 255 + 0.5f);
}

/// A smooth step from 0 at -1 to 1 at 1.
float Rise(float x) {
  const float t = std::clamp(x / 2 + 0.5f, 0.0f, 1.0f);
  return t * t * (3 - 2 * t);
}

/// The length by which a corner shortens the row whose centre is `y` pixels from the corner's edge.
float InsetAt(float radius, float y) {
  if (y >= radius) return 0;
  const float up = radius - y;
  return radius - std::sqrt(radius * radius - up * up);
}

void RenderGlow(RecipeReader& in, const VuRect& window, uint8_t* coverage) {
  const float radius = static_cast<float>(in.Number()) / 2;
  for (int y = 0; y < window.height; ++y)
    for (int x = 0; x < window.width; ++x) {
      const float dx = static_cast<float>(window.x + x) + 0.5f - radius;
      const float dy = static_cast<float>(window.y + y) + 0.5f - radius;
      const float way = std::hypot(dx, dy) / radius, left = std::max(1 - way, 0.0f);
      // A bright core in a wide halo.
      *coverage++ = ToCoverage(left * left * (0.35f + 0.65f * std::exp(-9 * way * way)));
    }
}

}  // namespace

void SoftRenderer::Render(const Recipe& recipe, const VuRect& window, uint8_t* coverage) {
  RecipeReader in(recipe);
  if (static_cast<Figure>(in.Number()) == Figure::Glow) return RenderGlow(in, window, coverage);
  RenderShadow(in, window, coverage);
}

void SoftRenderer::RenderShadow(RecipeReader& in, const VuRect& window, uint8_t* coverage) {
  const int width = in.Number(), height = in.Number(), blur = in.Number();
  const Corners r = in.Radii();
  const int topRows = static_cast<int>(std::ceil(std::max(r.topLeft, r.topRight)));
  const int bottomRows = static_cast<int>(std::ceil(std::max(r.bottomLeft, r.bottomRight)));
  sums_.assign(static_cast<size_t>(window.width) * static_cast<size_t>(window.height), 0);
  // The rectangle is inset by `blur` pixels in the bounds of its shadow.
  const int first = std::max(0, window.y - 2 * blur);
  const int last = std::min(height, window.y + window.height);
  for (int row = first, end; row < last; row = end) {
    const int straightEnd = height - bottomRows;
    end = row >= topRows && row < straightEnd ? straightEnd : row + 1;
    const float fromTop = static_cast<float>(row) + 0.5f;
    const float fromBottom = static_cast<float>(height) - fromTop;
    const float left = std::max(InsetAt(r.topLeft, fromTop), InsetAt(r.bottomLeft, fromBottom));
    const float right = std::max(InsetAt(r.topRight, fromTop), InsetAt(r.bottomRight, fromBottom));
    AddRows(window, static_cast<float>(row + blur), static_cast<float>(end + blur),
            static_cast<float>(blur) + left, static_cast<float>(blur + width) - right,
            static_cast<float>(blur));
  }
  std::transform(sums_.begin(), sums_.end(), coverage, ToCoverage);
}

void SoftRenderer::AddRows(const VuRect& window, float top, float bottom, float left, float right,
                           float blur) {
  profile_.resize(static_cast<size_t>(window.width));
  for (int x = 0; x < window.width; ++x) {
    const float at = static_cast<float>(window.x + x) + 0.5f;
    profile_[static_cast<size_t>(x)] = Rise((at - left) / blur) - Rise((at - right) / blur);
  }
  float* sum = sums_.data();
  for (int y = 0; y < window.height; ++y) {
    const float at = static_cast<float>(window.y + y) + 0.5f;
    const float weight = Rise((at - top) / blur) - Rise((at - bottom) / blur);
    for (const float part : profile_) *sum++ += weight * part;
  }
}

}  // namespace ZIRK::kit
