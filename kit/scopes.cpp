#include <zirk/kit/scopes.h>
#include <zirk/zirk.h>

#include <algorithm>

namespace ZIRK::kit {

namespace {

/// What two rectangles share; no extent where that is nothing. Edges may lie beyond 32 bits.
VuRect Shared(const VuRect& a, const VuRect& b) {
  const auto right = std::min(int64_t{a.x} + a.width, int64_t{b.x} + b.width);
  const auto bottom = std::min(int64_t{a.y} + a.height, int64_t{b.y} + b.height);
  const int32_t x = std::max(a.x, b.x), y = std::max(a.y, b.y);
  if (right <= x || bottom <= y) return {0, 0, 0, 0};
  return {x, y, static_cast<int32_t>(right - x), static_cast<int32_t>(bottom - y)};
}

}  // namespace

ClippingScope::ClippingScope(VuBitmap& target, VuRect rect)
    : target_(target), before_(target.GetClippingRect()) {
  target_.SetClippingRect(Shared(before_, rect));
}

ClippingScope::~ClippingScope() {
  target_.SetClippingRect(before_);
}

BlendingScope::BlendingScope(VuBitmap& target, VuBlendingFactor src, VuBlendingFactor dst)
    : target_(target) {
  target_.GetBlendingFunc(src_, dst_);
  target_.SetBlendingFunc(src, dst);
}

BlendingScope::~BlendingScope() {
  target_.SetBlendingFunc(src_, dst_);
}

}  // namespace ZIRK::kit
