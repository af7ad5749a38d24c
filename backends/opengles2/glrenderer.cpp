#include "opengles2/glrenderer.h"

#include "opengles2/glwindow.h"
#include "surface/drawmemory.h"

namespace ZIRK::backends {

bool GlRenderer::Resolve(VuBitmapImpl& surface, RectD* rect, Source& source, SourceCopy& copy) {
  source = FindSource(*resolver_, surface, Device());
  if (source.pixels && source.pixels != Texture()) return true;
  const Box part = TakePart(rect, ToBox(surface.GetBounds()));
  if (!resolver_->CopyToTexture(surface, part, Device(), copy)) return false;
  source.pixels = copy.get();
  return copy != nullptr;
}

bool GlRenderer::BlitBox(VuRect dst, VuBitmapImpl& src, VuRect srcRect, const MatrixF& m,
                         VuColor color) {
  const Source source = FindSource(*resolver_, src, Device());
  if (!source.pixels || source.pixels == Texture()) return false;
  return GlCanvas::BlitBox(dst, source, srcRect, m, color);
}

bool GlRenderer::Copy(VuPoint at, VuBitmapImpl& src, const VuRect& srcRect) {
  const CopyPlan plan = PlanCopy(at.x, at.y, Bounds(), srcRect, ToBox(src.GetBounds()));
  const Box& box = plan.box;
  GlTexture* const texture = FindSource(*resolver_, src, Device()).pixels;
  if (texture && box.IsEmpty()) return true;
  if (texture && texture != Texture()) return CopyFrom(*texture, plan.srcX, plan.srcY, box);
  const Box part = {plan.srcX, plan.srcY, plan.srcX + box.Width(), plan.srcY + box.Height()};
  SourceCopy copy;
  if (!resolver_->CopyToTexture(src, part, Device(), copy)) return false;
  return !copy || CopyFrom(*copy, 0, 0, box);
}

bool GlRenderer::Lock(bool) {
  locked_ =
      AllocateToDraw<uint8_t>(static_cast<size_t>(Pitch()) * static_cast<size_t>(State().height));
  return locked_ && Read(Bounds(), locked_.get());
}

bool GlRenderer::Unlock(bool written) {
  const std::unique_ptr<uint8_t[]> pixels = std::move(locked_);
  return !written || Write(Bounds(), pixels.get(), static_cast<unsigned>(Pitch()));
}

/// Sends all drawing, and reports errors.
void GlRenderer::EndFrame(PFNGLFLUSHPROC GlFunctions::*how) {
  Device().Batch().Flush();
  const GlScope scope(Device());
  if (!scope) return;
  (Device().Gl().*how)();
  Device().Check("drawing");
}

void GlRenderer::SetName(const char* name) {
  if (Texture()) Texture()->SetName(name);
  if (Window()) Window()->SetTitle(name);
}

bool GlRenderer::DrawGlyph(const TextLayout::Glyph& glyph, const LineStyle<GlTexture>& style) {
  const Source atlas = {FindSource(*resolver_, *glyph.atlas, Device()).pixels,
                        VuScaleMode::Bilinear};
  // The atlas of a lost context has no texture.
  if (!atlas.pixels) return false;
  if (!style.mask &&
      GlCanvas::BlitBox(glyph.destination, atlas, glyph.source, style.matrix, style.color))
    return true;
  DrawObject(ToRectD(glyph.destination), atlas, ToRectD(glyph.source), Edges::OnWholePixels,
             style.matrix, style.color, style.mask);
  return true;
}

template class TextDrawing<GlRenderer, GlTexture>;

}  // namespace ZIRK::backends
