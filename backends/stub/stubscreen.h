#pragma once

#include <zirk/impl/vuscreenimpl.h>
#include <zirk/vuperfcounter.h>

#include "stub/stubbitmap.h"

namespace ZIRK::backends {

class StubScreen final : public StubSurface<VuScreenImpl> {
 public:
  using StubSurface<VuScreenImpl>::StubSurface;

  void SwapBuffers() override {
    if (LogFPS) ShowFPS();
  }
};

}  // namespace ZIRK::backends
