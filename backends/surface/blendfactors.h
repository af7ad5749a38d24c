#pragma once

#include <zirk/vuenums.h>

namespace ZIRK::backends {

/// The factors of the blending function.
struct BlendFactors {
  VuBlendingFactor srcColor = VuBlendingFactor::One;
  VuBlendingFactor dstColor = VuBlendingFactor::OneMinusSrcAlpha;
  VuBlendingFactor srcAlpha = VuBlendingFactor::One;
  VuBlendingFactor dstAlpha = VuBlendingFactor::OneMinusSrcAlpha;
};

}  // namespace ZIRK::backends
