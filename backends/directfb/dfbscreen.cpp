#include "directfb/dfbscreen.h"

#include <zirk/vuperfcounter.h>

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
      singleBuffered_(!screen.twoBuffers) {}

bool DirectFbScreen::Begin() {
  if (!Drawing().Begin()) return false;
  // What is shown is cleared by that, too.
  Present();
  return true;
}

void DirectFbScreen::SwapBuffers() {
  Present();
  if (LogFPS) ShowFPS();
}

void DirectFbScreen::Finish() {
  if (singleBuffered_) Present();
  DirectFbSurface::Finish();
}

void DirectFbScreen::Flush() {
  if (singleBuffered_) Present();
}

void DirectFbScreen::Present() {
  const DrawTimer timer = DrawTimer::Swapping();
  if (layer_) Drawing().Flip();
}

}  // namespace ZIRK::backends
