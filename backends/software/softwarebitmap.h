#pragma once

#include <memory>

#include "software/softwarerenderer.h"
#include "surface/surface.h"

namespace ZIRK::backends {

/// What a cache of textures keeps at a bitmap: whether there is a texture of the bitmap.
class CachedTexture {
 public:
  virtual ~CachedTexture() = default;
  virtual bool HasTexture() const = 0;
};

/// An off-screen bitmap in memory.
class SoftwareBitmap final : public Surface<VuBitmapImpl, SoftwareRenderer> {
 public:
  using Surface::Surface;

  bool IsTextureBacked() const override { return cached_ && cached_->HasTexture(); }

  /// The cache's object, null at first; it is deleted with the bitmap. The cache uploads what the
  /// renderer has touched.
  std::unique_ptr<CachedTexture>& Cached() { return cached_; }

 private:
  std::unique_ptr<CachedTexture> cached_;
};

}  // namespace ZIRK::backends
