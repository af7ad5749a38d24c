#pragma once

#include "opengles2/glrenderer.h"
#include "surface/surface.h"

namespace ZIRK::backends {

/// An off-screen bitmap: a texture.
class GlBitmap final : public Surface<VuBitmapImpl, GlRenderer> {
 public:
  using Surface::Surface;
};

}  // namespace ZIRK::backends
