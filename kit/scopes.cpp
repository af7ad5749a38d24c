#include <zirk/kit/scopes.h>
#include <zirk/vubitmap.h>

#include "rects.h"

namespace ZIRK::kit {

ClippingScope::ClippingScope(VuBitmap& target, VuRect rect)
    : target_(target), before_(target.GetClippingRect()) {
  target_.SetClippingRect(Intersect(before_, rect));
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
