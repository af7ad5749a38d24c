#pragma once

#include <memory>
#include <utility>

#include "geometry/surfaceformat.h"
#include "opengles2/glcanvas.h"
#include "opengles2/texturesources.h"
#include "text/textdrawing.h"

namespace ZIRK::backends {

/// Draws by OpenGL, for DrawnSurface.
class GlRenderer : public GlCanvas, public TextDrawing<GlRenderer, GlTexture> {
 public:
  using Pixels = GlTexture;
  using SourceCopy = std::unique_ptr<GlTexture>;

  GlRenderer(const SurfaceState& state, std::shared_ptr<GlDevice> device,
             std::shared_ptr<TextureSources> sources)
      : GlCanvas(std::move(device), state), state_(state), sources_(std::move(sources)) {}

  bool Resolve(VuBitmapImpl& surface, Extent* part, Source& source, SourceCopy& copy);
  bool BlitBox(VuRect dst, VuBitmapImpl& src, VuRect srcRect, const MatrixF& m, VuColor color);
  bool Copy(VuPoint at, VuBitmapImpl& src, const VuRect& srcRect);

  // For TextDrawing.
  GlyphAtlasAllocator& Atlases() const { return sources_->Atlases(); }
  bool DrawGlyph(const TextLayout::Glyph& glyph, const LineStyle<GlTexture>& style);

  /// The pixels are a copy while they are locked.
  bool Lock(bool write);
  bool Unlock(bool written);
  void* LockedPixels() const { return locked_.get(); }
  int Pitch() const { return state_.width * BytesPerPixel(state_.format); }

 private:
  Box All() const { return {0, 0, state_.width, state_.height}; }

  const SurfaceState& state_;
  const std::shared_ptr<TextureSources> sources_;
  std::unique_ptr<uint8_t[]> locked_;
};

extern template class TextDrawing<GlRenderer, GlTexture>;

}  // namespace ZIRK::backends
