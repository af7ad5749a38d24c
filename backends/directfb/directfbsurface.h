#pragma once

#include <memory>
#include <utility>

#include "directfb/directfbrenderer.h"
#include "directfb/directfbruntime.h"
#include "surface/drawnsurface.h"

namespace ZIRK::backends {

/// A surface drawn by DirectFB. `Base` is VuBitmapImpl or VuScreenImpl.
///
/// Sources and masks are other surfaces of this plug-in, of whichever context; anything else draws
/// nothing, with an error line.
template <class Base>
class DirectFbSurface : public DrawnSurface<Base, DirectFbRenderer> {
 public:
  using DrawnSurface<Base, DirectFbRenderer>::DrawnSurface;

  void Finish() override {
    const DrawTimer timer = DrawTimer::Drawing();
    WaitForDirectFb();
  }
  void Flush() override {}
};

/// An off-screen bitmap.
class DirectFbBitmap final : public DirectFbSurface<VuBitmapImpl> {
 public:
  using DirectFbSurface::DirectFbSurface;
};

}  // namespace ZIRK::backends
