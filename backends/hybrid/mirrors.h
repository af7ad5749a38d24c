#pragma once

#include <atomic>
#include <list>
#include <memory>

#include "opengles2/texturesources.h"
#include "software/softwarebitmap.h"

namespace ZIRK::backends {

/// Makes bitmaps in memory sources of OpenGL surfaces: by a texture that mirrors the bitmap from
/// the first time that it is drawn from. From then on only the rectangle that has changed since the
/// last time is sent. A bitmap that is too large for a texture is sent anew, as far as it is drawn
/// from, each time.
///
/// The textures are used and deleted where OpenGL is, on one thread at a time. Bitmaps may be
/// deleted on any other; their textures then wait here for the next bitmap to be drawn from.
class Mirrors final : public TextureSources {
 public:
  Mirrors(std::shared_ptr<GlDevice> device, std::shared_ptr<GlyphAtlasAllocator> atlases);
  ~Mirrors();
  Mirrors(const Mirrors&) = delete;
  Mirrors& operator=(const Mirrors&) = delete;

  const std::shared_ptr<GlDevice>& Device() const { return device_; }

  GlyphAtlasAllocator& Atlases() override { return *atlases_; }
  GlTexture* TextureOf(VuBitmapImpl& surface, GlDevice& device) override;
  bool CopyToTexture(VuBitmapImpl& surface, const Box& part, GlDevice& device,
                     std::unique_ptr<GlTexture>& copy) override;

 private:
  class Mirror;
  struct Slot {
    std::unique_ptr<GlTexture> texture;
    Mirror* mirror = nullptr;  ///< Null when the bitmap has gone.
  };

  GlTexture* TextureOf(SoftwareBitmap& bitmap, GlDevice& device);
  GlTexture* Make(SoftwareBitmap& bitmap);
  void DeleteAbandoned();

  const std::shared_ptr<GlDevice> device_;
  const std::shared_ptr<GlyphAtlasAllocator> atlases_;
  std::list<Slot> slots_;
  std::atomic<bool> anyAbandoned_{false};
};

}  // namespace ZIRK::backends
