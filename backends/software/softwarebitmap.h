#pragma once

#include <memory>

#include "software/softwarerenderer.h"
#include "surface/surface.h"

namespace ZIRK::backends {

/// The base of the object that a cache of textures attaches to a bitmap.
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

  /// Returns the cache's object, which is null at first and is deleted with the bitmap. The cache
  /// uploads the pixels that the renderer has touched.
  std::unique_ptr<CachedTexture>& Cached() { return cached_; }

 private:
  std::unique_ptr<CachedTexture> cached_;
};

}  // namespace ZIRK::backends
