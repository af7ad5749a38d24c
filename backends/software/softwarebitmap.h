#pragma once

#include <memory>

#include "software/softwarerenderer.h"
#include "surface/surface.h"

namespace ZIRK::backends {

/// A texture that holds what a bitmap held when it was last looked at.
class BitmapMirror {
 public:
  virtual ~BitmapMirror() = default;
  virtual bool HasTexture() const = 0;
};

/// An off-screen bitmap in memory.
class SoftwareBitmap final : public Surface<VuBitmapImpl, SoftwareRenderer> {
 public:
  using Surface::Surface;

  bool IsTextureBacked() const override { return mirror_ && mirror_->HasTexture(); }

  /// The bitmap's mirror, null at first, lives no longer than the bitmap. Whoever sets it keeps it
  /// up to date, by what the renderer has touched.
  std::unique_ptr<BitmapMirror>& Mirror() { return mirror_; }

 private:
  std::unique_ptr<BitmapMirror> mirror_;
};

}  // namespace ZIRK::backends
