#pragma once

#include <zirk/impl/vuscreenimpl.h>

#include <memory>

#include "directfb/dfbbitmap.h"
#include "directfb/directfblayer.h"
#include "surface/presenter.h"

namespace ZIRK::backends {

/// What a screen's surface lies on, and outlives.
struct ScreenLayer {
  std::unique_ptr<DirectFbLayer> layer_;
};

/// A screen: a display layer's surface.
class DirectFbScreen final : private ScreenLayer,
                             public DirectFbSurface<VuScreenImpl>,
                             private Presenter {
 public:
  /// `layer` is null where there is none: the picture then stays in memory.
  DirectFbScreen(std::unique_ptr<SurfaceLedger::Entry> entry, std::unique_ptr<DirectFbLayer> layer,
                 DirectFbLayer::Screen screen, std::shared_ptr<AtlasGraphics> atlases);

  /// Clears a new screen; false, after an error line, if there is no memory for it.
  bool Begin();

  void SwapBuffers() override { Swap(); }
  void Finish() override {
    ShowIfSingleBuffered();
    DirectFbSurface::Finish();
  }
  void Flush() override { ShowIfSingleBuffered(); }

 private:
  void Present() override;
};

}  // namespace ZIRK::backends
