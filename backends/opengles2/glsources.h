#pragma once

#include <memory>
#include <utility>

#include "opengles2/texturesources.h"
#include "text/glyphatlasallocator.h"

namespace ZIRK::backends {

/// What OpenGL surfaces read: each other. It also makes the bitmaps of their glyph atlases.
class GlSources final : public GlyphAtlasAllocator, public TextureSources {
 public:
  GlSources(std::shared_ptr<MemoryBudget> budget, int graphicsType,
            std::shared_ptr<GlDevice> device)
      : GlyphAtlasAllocator(std::move(budget), graphicsType), device_(std::move(device)) {}

  GlyphAtlasAllocator& Atlases() override { return *this; }
  GlTexture* TextureOf(VuBitmapImpl& surface, GlDevice& device) override {
    return backends::TextureOf(FindCanvas(surface), device);
  }
  bool CopyToTexture(VuBitmapImpl& surface, const Box& part, GlDevice& device,
                     std::unique_ptr<GlTexture>& copy) override {
    return backends::CopyToTexture(FindCanvas(surface), part, device, copy);
  }

 private:
  std::unique_ptr<VuBitmapImpl> MakeBitmap(Reservation reservation, int width, int height,
                                           VuPixelFormat format) override;

  const std::shared_ptr<GlDevice> device_;
};

}  // namespace ZIRK::backends
