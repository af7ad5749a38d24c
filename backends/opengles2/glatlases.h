#pragma once

#include <memory>
#include <utility>

#include "opengles2/texturesources.h"
#include "text/atlasgraphics.h"

namespace ZIRK::backends {

/// Makes the atlases' bitmaps. OpenGL surfaces are the only sources.
class GlAtlases final : public AtlasGraphics, public TextureSources {
 public:
  GlAtlases(std::shared_ptr<SurfaceLedger> ledger, int graphicsType,
            std::shared_ptr<GlDevice> device)
      : AtlasGraphics(std::move(ledger), graphicsType), device_(std::move(device)) {}

  AtlasGraphics& Atlases() override { return *this; }
  GlTexture* TextureOf(VuBitmapImpl& surface, GlDevice& device) override {
    return backends::TextureOf(FindCanvas(surface), device);
  }
  bool CopyPixels(VuBitmapImpl& surface, const Box& part, GlDevice& device,
                  std::unique_ptr<GlTexture>& copy) override {
    return backends::CopyPixels(FindCanvas(surface), part, device, copy);
  }

 protected:
  std::unique_ptr<VuBitmapImpl> MakeBitmap(Entry entry, int width, int height,
                                           VuPixelFormat format) override;

 private:
  const std::shared_ptr<GlDevice> device_;
};

}  // namespace ZIRK::backends
