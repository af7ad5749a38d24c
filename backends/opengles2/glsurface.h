#pragma once

#include <zirk/impl/vuscreenimpl.h>

#include <memory>
#include <utility>

#include "opengles2/glrenderer.h"
#include "surface/drawnsurface.h"

namespace ZIRK::backends {

/// A surface drawn by OpenGL. `Base` is VuBitmapImpl or VuScreenImpl.
///
/// Sources and masks are other surfaces of this kind, also those of other contexts of this plug-in,
/// and what its TextureSources know; anything else draws nothing, with an error line.
template <class Base>
class GlSurface : public DrawnSurface<Base, GlRenderer> {
 public:
  using DrawnSurface<Base, GlRenderer>::DrawnSurface;

  GlCanvas& Canvas() { return this->Drawing(); }
  const GlCanvas& Canvas() const { return this->Drawing(); }

  void SetName(const char* name) final {
    BitmapBase<Base>::SetName(name);
    if (Canvas().Texture()) Canvas().Texture()->SetName(name);
  }

  void Finish() override { EndFrame(&GlFunctions::Finish); }
  void Flush() override { EndFrame(&GlFunctions::Flush); }

  bool IsTextureBacked() const final { return Canvas().Texture() != nullptr; }

 protected:
  Box All() const { return {0, 0, this->state_.width, this->state_.height}; }

  /// Sends what has been drawn, and reports what went wrong with it.
  void EndFrame(PFNGLFLUSHPROC GlFunctions::*how) {
    const DrawTimer timer = DrawTimer::Drawing();
    GlDevice& device = Canvas().Device();
    device.Batch().Flush();
    const GlScope scope(device);
    if (!scope) return;
    (device.Gl().*how)();
    device.Check("drawing");
  }
};

/// An off-screen bitmap.
class GlBitmap final : public GlSurface<VuBitmapImpl> {
 public:
  using GlSurface::GlSurface;
};

}  // namespace ZIRK::backends
