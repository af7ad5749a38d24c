#pragma once

#include "directfb/directfbrenderer.h"
#include "surface/surface.h"

namespace ZIRK::backends {

/// An off-screen bitmap.
class DirectFbBitmap final : public Surface<VuBitmapImpl, DirectFbRenderer> {
 public:
  using Surface::Surface;
};

}  // namespace ZIRK::backends
