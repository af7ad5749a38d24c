#pragma once

#include <zirk/impl/vubitmapimpl.h>

#include <memory>
#include <utility>

#include "opengles2/glcanvas.h"
#include "text/glyphatlasallocator.h"

namespace ZIRK::backends {

/// What OpenGL surfaces of one context share: glyph atlases, and the way to the textures of the
/// surfaces that they read, as far as these are no OpenGL bitmaps of the same device.
class TextureSources {
 public:
  /// Makes the atlases of fonts that are first drawn with on one of the surfaces.
  virtual GlyphAtlasAllocator& Atlases() = 0;

  /// The texture of `device` that holds all of `surface`. Null if there is none, after an error
  /// line if one could not be made.
  virtual GlTexture* TextureOf(VuBitmapImpl& surface, GlDevice& device) = 0;

  /// Copies `part`, which lies on `surface` and may be empty, into a texture of `device`, from
  /// where else it is. False after an error line; so it is for surfaces of other plug-ins.
  virtual bool CopyToTexture(VuBitmapImpl& surface, const Box& part, GlDevice& device,
                             std::unique_ptr<GlTexture>& copy) = 0;

 protected:
  ~TextureSources() = default;
};

/// A surface as it is read where a texture of `device` holds it: a bitmap's own, or what `sources`
/// knows. Without texture if there is none.
Source<GlTexture> FindSource(TextureSources& sources, VuBitmapImpl& surface, GlDevice& device);

/// What an OpenGL surface of this plug-in is drawn on; null for any other.
GlCanvas* FindCanvas(VuBitmapImpl& surface);

/// TextureSources' operations for OpenGL surfaces.
GlTexture* TextureOf(GlCanvas* canvas, const GlDevice& device);
bool CopyToTexture(GlCanvas* canvas, const Box& part, const GlDevice& device,
                   std::unique_ptr<GlTexture>& copy);

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
