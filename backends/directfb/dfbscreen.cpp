#include "directfb/dfbscreen.h"

#include <utility>

namespace ZIRK::backends {

DirectFbScreen::DirectFbScreen(std::unique_ptr<SurfaceLedger::Entry> entry,
                               std::unique_ptr<DirectFbLayer> layer, DirectFbLayer::Screen screen,
                               std::shared_ptr<AtlasGraphics> atlases)
    : ScreenLayer{std::move(layer)},
      DirectFbSurface(
          std::move(entry), screen.width, screen.height, screen.format, std::move(screen.surface),
          std::move(atlases),
          screen.twoBuffers ? DirectFbRenderer::Buffers::Two : DirectFbRenderer::Buffers::One),
      Presenter(!screen.twoBuffers) {}

bool DirectFbScreen::Begin() {
  if (!Drawing().Begin()) return false;
  // What is shown is cleared by that, too.
  Show();
  return true;
}

void DirectFbScreen::Present() {
  if (layer_) Drawing().Flip();
}

}  // namespace ZIRK::backends
