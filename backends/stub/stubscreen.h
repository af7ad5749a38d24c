#pragma once

#include <zirk/impl/vuscreenimpl.h>
#include <zirk/vuperfcounter.h>

#include "stub/stubrenderer.h"
#include "surface/surface.h"

namespace ZIRK::backends {

/// A screen that shows nothing, and counts frames.
class StubScreen final : public Surface<VuScreenImpl, StubRenderer> {
 public:
  using Surface::Surface;

  void SwapBuffers() override {
    if (LogFPS) ShowFPS();
  }
};

}  // namespace ZIRK::backends
