#pragma once

/// @file
/// Changes of a surface's state that end with a scope.

#include <zirk/export.h>
#include <zirk/vuenums.h>
#include <zirk/vurect.h>

namespace ZIRK {
class VuBitmap;
}

namespace ZIRK::kit {

/// While it lives, nothing is drawn on a surface outside a rectangle, nor outside the clipping
/// rectangle that was there before, which its end restores. Scopes end in the opposite order of
/// their beginnings, before their surface does, and on the thread that draws on it.
class ZIRK_API ClippingScope {
 public:
  /// Clips `target` to what `rect`, in its pixels, and its clipping rectangle share: nothing where
  /// either has no extent.
  ClippingScope(VuBitmap& target, VuRect rect);
  /// Restores the clipping rectangle.
  ~ClippingScope();
  ClippingScope(const ClippingScope&) = delete;
  ClippingScope& operator=(const ClippingScope&) = delete;

 private:
  VuBitmap& target_;
  const VuRect before_;
};

/// While it lives, what is drawn on a surface is blended with other factors. Scopes end as those of
/// ClippingScope do.
class ZIRK_API BlendingScope {
 public:
  /// Sets both factors of `target`, for colour and alpha: (One, One) adds light.
  BlendingScope(VuBitmap& target, VuBlendingFactor src, VuBlendingFactor dst);
  /// Restores the factors for colour, and sets those for alpha to the same: a surface does not tell
  /// them.
  ~BlendingScope();
  BlendingScope(const BlendingScope&) = delete;
  BlendingScope& operator=(const BlendingScope&) = delete;

 private:
  VuBitmap& target_;
  VuBlendingFactor src_, dst_;
};

}  // namespace ZIRK::kit
