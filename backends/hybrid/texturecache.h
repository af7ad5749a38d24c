#pragma once

#include <atomic>
#include <list>
#include <memory>

#include "opengles2/glsourceresolver.h"
#include "software/softwarebitmap.h"

namespace ZIRK::backends {

/// Keeps a texture for each bitmap in memory that was drawn onto an OpenGL surface. The first draw
/// uploads the whole bitmap, each later one the bounds of what changed since. A bitmap that is too
/// large for a texture is not kept: each draw uploads the part that it reads.
///
/// Textures are used and deleted on the thread that has OpenGL's context. A bitmap may be deleted
/// on any thread; its texture is deleted when the next bitmap is drawn from.
class TextureCache final : public TextureSourceResolver {
 public:
  TextureCache(std::shared_ptr<GlDevice> device, std::shared_ptr<GlyphAtlasAllocator> atlases);
  ~TextureCache();
  TextureCache(const TextureCache&) = delete;
  TextureCache& operator=(const TextureCache&) = delete;

  const std::shared_ptr<GlDevice>& Device() const { return device_; }

  GlyphAtlasAllocator& Atlases() override { return *atlases_; }
  GlTexture* TextureOf(VuBitmapImpl& surface, GlDevice& device) override;
  bool CopyToTexture(VuBitmapImpl& surface, const Box& part, GlDevice& device,
                     std::unique_ptr<GlTexture>& copy) override;

 private:
  class Handle;
  struct Slot {
    std::unique_ptr<GlTexture> texture;
    Handle* handle = nullptr;  ///< Null after the bitmap is deleted.
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
