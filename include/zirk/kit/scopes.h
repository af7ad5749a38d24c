#pragma once

/// @file
/// Guards that change the state of a surface and restore it at the end of a scope.

#include <zirk/export.h>
#include <zirk/vuenums.h>
#include <zirk/vurect.h>

namespace ZIRK {
class VuBitmap;
}

namespace ZIRK::kit {

/// Narrows the clipping rectangle of a surface and restores the earlier one when it is destroyed.
/// Destroy scopes in the reverse order of their construction, before their surface, and on the
/// thread that draws on it.
class ZIRK_API ClippingScope {
 public:
  /// Clips `target` to the intersection of `rect`, in its pixels, and its clipping rectangle. If
  /// either is empty, nothing is drawn.
  ClippingScope(VuBitmap& target, VuRect rect);
  /// Restores the clipping rectangle.
  ~ClippingScope();
  ClippingScope(const ClippingScope&) = delete;
  ClippingScope& operator=(const ClippingScope&) = delete;

 private:
  VuBitmap& target_;
  const VuRect before_;
};

/// Sets the blending factors of a surface and restores the earlier ones when it is destroyed.
/// Destroy it under the same conditions as ClippingScope.
class ZIRK_API BlendingScope {
 public:
  /// Sets both factors of `target`, for colour and for alpha. (One, One) adds light.
  BlendingScope(VuBitmap& target, VuBlendingFactor src, VuBlendingFactor dst);
  /// Restores the colour factors and sets the alpha factors to the same values, since the earlier
  /// alpha factors cannot be queried.
  ~BlendingScope();
  BlendingScope(const BlendingScope&) = delete;
  BlendingScope& operator=(const BlendingScope&) = delete;

 private:
  VuBitmap& target_;
  VuBlendingFactor src_, dst_;
};

}  // namespace ZIRK::kit
