#pragma once

#include <memory>
#include <utility>

#include "geometry/surfaceformat.h"
#include "opengles2/glcanvas.h"
#include "opengles2/glsourceresolver.h"
#include "text/textdrawing.h"

namespace ZIRK::backends {

/// Draws by OpenGL. Sources and masks are other surfaces that OpenGL draws, including those of
/// other contexts of this plug-in, and those that its TextureSourceResolver knows.
/// surface/renderer.h documents the operations.
class GlRenderer : public GlCanvas, public TextDrawing<GlRenderer, GlTexture> {
 public:
  GlRenderer(const SurfaceState& state, std::shared_ptr<GlDevice> device,
             std::shared_ptr<TextureSourceResolver> resolver)
      : GlCanvas(std::move(device), state), resolver_(std::move(resolver)) {}

  // --- Reading ---

  using Pixels = GlTexture;
  using SourceCopy = std::unique_ptr<GlTexture>;
  bool Resolve(VuBitmapImpl& surface, RectD* part, Source& source, SourceCopy& copy);

  // --- Drawing ---

  using GlCanvas::FillBox;
  bool BlitBox(VuRect dst, VuBitmapImpl& src, VuRect srcRect, const MatrixF& m, VuColor color);
  using GlCanvas::DrawLine;
  using GlCanvas::DrawObject;
  using GlCanvas::DrawPoint;
  using GlCanvas::DrawRect;
  using TextDrawing::DrawText;

  // --- Pixels ---

  using GlCanvas::Clear;
  using GlCanvas::Read;
  using GlCanvas::Write;
  bool Copy(VuPoint at, VuBitmapImpl& src, const VuRect& srcRect);

  // --- Locking ---

  // While it is locked, the pixels are a copy.
  bool Lock(bool write);
  bool Unlock(bool written);
  void* LockedPixels() const { return locked_.get(); }
  int Pitch() const { return State().width * BytesPerPixel(State().format); }

  // --- The whole surface ---

  void Finish() { EndFrame(&GlFunctions::Finish); }
  void Flush() { EndFrame(&GlFunctions::Flush); }
  void SetName(const char* name);
  bool IsTextureBacked() const { return Texture() != nullptr; }

 private:
  friend class TextDrawing<GlRenderer, GlTexture>;
  GlyphAtlasAllocator& Atlases() const { return resolver_->Atlases(); }
  bool DrawGlyph(const TextLayout::Glyph& glyph, const LineStyle<GlTexture>& style);

  void EndFrame(PFNGLFLUSHPROC GlFunctions::*how);

  const std::shared_ptr<TextureSourceResolver> resolver_;
  std::unique_ptr<uint8_t[]> locked_;
};

extern template class TextDrawing<GlRenderer, GlTexture>;

}  // namespace ZIRK::backends
