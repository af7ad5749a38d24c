#pragma once

#include <zirk/impl/vubitmapimpl.h>

#include <memory>
#include <utility>

#include "opengles2/glcanvas.h"
#include "text/glyphatlasallocator.h"

namespace ZIRK::backends {

/// Finds the textures that OpenGL surfaces of one context read, and makes their glyph atlases.
/// Bitmaps of the same device need no resolver: FindSource() reads their textures directly.
class TextureSourceResolver {
 public:
  /// Allocates the atlas of a font that is drawn for the first time.
  virtual GlyphAtlasAllocator& Atlases() = 0;

  /// The texture of `device` that holds all of `surface`. Null if there is none, after an error
  /// line if one could not be made.
  virtual GlTexture* TextureOf(VuBitmapImpl& surface, GlDevice& device) = 0;

  /// Copies `part`, which lies on `surface` and may be empty, into a texture of `device`. False
  /// after an error line, also for a surface of another plug-in.
  virtual bool CopyToTexture(VuBitmapImpl& surface, const Box& part, GlDevice& device,
                             std::unique_ptr<GlTexture>& copy) = 0;

 protected:
  ~TextureSourceResolver() = default;
};

/// The texture of `device` that holds `surface`: a bitmap's own, or the one that `resolver` finds.
/// Its pixels are null if there is none.
Source<GlTexture> FindSource(TextureSourceResolver& resolver, VuBitmapImpl& surface,
                             GlDevice& device);

/// The canvas of an OpenGL surface of this plug-in; null for any other surface.
GlCanvas* FindCanvas(VuBitmapImpl& surface);

/// The operations of TextureSourceResolver for OpenGL surfaces.
GlTexture* TextureOf(GlCanvas* canvas, const GlDevice& device);
bool CopyToTexture(GlCanvas* canvas, const Box& part, const GlDevice& device,
                   std::unique_ptr<GlTexture>& copy);

/// Finds the textures of OpenGL surfaces for each other. Also makes the bitmaps of their glyph
/// atlases.
class GlSourceResolver final : public GlyphAtlasAllocator, public TextureSourceResolver {
 public:
  GlSourceResolver(std::shared_ptr<MemoryBudget> budget, int graphicsType,
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
