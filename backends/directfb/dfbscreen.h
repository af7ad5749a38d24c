#pragma once

#include <zirk/impl/vuscreenimpl.h>

#include <memory>

#include "directfb/dfbbitmap.h"
#include "directfb/dfblayer.h"

namespace ZIRK::backends {

/// What a screen's surface lies on, and outlives.
struct ScreenLayer {
  std::unique_ptr<DirectFbLayer> layer_;
};

/// A screen: a display layer's surface.
class DirectFbScreen final : private ScreenLayer, public DirectFbSurface<VuScreenImpl> {
 public:
  /// `layer` is null where there is none: the picture then stays in memory.
  DirectFbScreen(std::unique_ptr<SurfaceLedger::Entry> entry, std::unique_ptr<DirectFbLayer> layer,
                 DirectFbLayer::Screen screen, std::shared_ptr<AtlasGraphics> atlases);

  /// Clears a new screen; false, after an error line, if there is no memory for it.
  bool Begin();

  void SwapBuffers() override;

  /// On a single-buffered screen drawing is seen without a swap.
  void Finish() override;
  void Flush() override;

 private:
  void Present();

  const bool singleBuffered_;
};

}  // namespace ZIRK::backends
