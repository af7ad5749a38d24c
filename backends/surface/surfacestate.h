#pragma once

#include <zirk/vucolor.h>
#include <zirk/vuenums.h>
#include <zirk/vurect.h>

namespace ZIRK::backends {

/// The four factors of the blending function.
struct BlendFactors {
  VuBlendingFactor srcColor = VuBlendingFactor::One;
  VuBlendingFactor dstColor = VuBlendingFactor::OneMinusSrcAlpha;
  VuBlendingFactor srcAlpha = VuBlendingFactor::One;
  VuBlendingFactor dstAlpha = VuBlendingFactor::OneMinusSrcAlpha;
};

/// What a surface remembers between drawing calls, apart from its pixels.
struct SurfaceState {
  int width;
  int height;
  VuPixelFormat format;
  VuRect clip{0, 0, width, height};
  BlendFactors factors{};
  bool blendEnabled = true;
  VuColor blendColor{0};
  VuScaleMode scaleMode = VuScaleMode::Nearest;

  /// Goes up with every change of what is above, for those who keep something derived from it.
  unsigned revision = 0;
};

}  // namespace ZIRK::backends
