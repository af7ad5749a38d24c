#pragma once

#include <zirk/vucolor.h>
#include <zirk/vuenums.h>
#include <zirk/vurect.h>

#include "surface/blendfactors.h"

namespace ZIRK::backends {

/// The state of a surface between drawing calls, without its pixels.
struct SurfaceState {
  int width;
  int height;
  VuPixelFormat format;
  VuRect clip{0, 0, width, height};
  BlendFactors factors{};
  bool blendEnabled = true;
  VuColor blendColor{0};
  VuScaleMode scaleMode = VuScaleMode::Nearest;

  /// Incremented at every change of the fields above; see SeenRevision.
  unsigned revision = 0;
};

/// The revision of a surface's state that derived data is based on.
class SeenRevision {
 public:
  /// `state` must outlive this object.
  explicit SeenRevision(const SurfaceState& state) : state_(state) { Forget(); }

  /// Returns whether the state has changed since the last call. The first call returns true.
  bool CatchUp() {
    if (seen_ == state_.revision) return false;
    seen_ = state_.revision;
    return true;
  }
  /// Makes the next CatchUp() return true.
  void Forget() { seen_ = state_.revision - 1; }

 private:
  const SurfaceState& state_;
  unsigned seen_;
};

}  // namespace ZIRK::backends
