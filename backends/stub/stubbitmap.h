#pragma once

#include "stub/stubrenderer.h"
#include "surface/surface.h"

namespace ZIRK::backends {

/// A bitmap without pixels.
class StubBitmap final : public Surface<VuBitmapImpl, StubRenderer> {
 public:
  using Surface::Surface;
};

}  // namespace ZIRK::backends
