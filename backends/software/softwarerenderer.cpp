#include "software/softwarerenderer.h"

#include "software/softwarebitmap.h"
#include "surface/ownsurface.h"

namespace ZIRK::backends {

namespace {

bool IsInRange(int64_t position) {
  constexpr auto kLimit = static_cast<int64_t>(kMaxCoordinate);
  return position >= -kLimit && position <= kLimit;
}

}  // namespace

std::optional<PixelBuffer> CopyOf(const PixelBuffer& pixels, const Box& part) {
  if (part.IsEmpty()) return std::nullopt;
  auto copy = PixelBuffer::TryCreate(part.Width(), part.Height(), pixels.Format());
  if (copy) CopyRect(*copy, {0, 0}, pixels, ToRect(part));
  return copy;
}

Source<const PixelBuffer> FindSource(PixelSourceResolver& resolver, VuBitmapImpl& surface) {
  // Nearly all sources are bitmaps, which this finds quickly.
  if (const auto* bitmap = AsOwn<SoftwareBitmap>(&surface))
    return {&bitmap->Drawing().Buffer(), bitmap->GetScaleMode()};
  return {resolver.PixelsOf(surface), surface.GetScaleMode()};
}

bool SoftwareRenderer::Resolve(VuBitmapImpl& surface, RectD* rect, Source& source,
                               SourceCopy& copy) const {
  source = FindSource(*resolver_, surface);
  if (source.pixels && source.pixels != &pixels_) return true;
  const Box part = TakePart(rect, ToBox(surface.GetBounds()));
  if (source.pixels)
    copy = CopyOf(pixels_, part);
  else if (!resolver_->CopyToBuffer(surface, part, copy))
    return false;
  if (copy) source.pixels = &*copy;
  return copy.has_value();
}

bool SoftwareRenderer::BlitBox(const VuRect& dst, VuBitmapImpl& src, const VuRect& srcRect,
                               const MatrixF& m, VuColor color) {
  const auto* const bitmap = AsOwn<SoftwareBitmap>(&src);
  if (!bitmap || &bitmap->Drawing().Buffer() == &pixels_) return false;
  return Painter::BlitBox(dst, {&bitmap->Drawing().Buffer(), VuScaleMode::Nearest}, srcRect, m,
                          color);
}

bool SoftwareRenderer::Clear(VuColor color) {
  ClearPixels(pixels_, color);
  Touch(pixels_.Bounds());
  return true;
}

bool SoftwareRenderer::Read(const Box& box, void* dst) const {
  ReadPixels(pixels_, box, dst);
  return true;
}

bool SoftwareRenderer::Write(const Box& box, const void* src, unsigned pitch) {
  WritePixels(pixels_, box, src, pitch);
  Touch(box);
  return true;
}

bool SoftwareRenderer::Copy(VuPoint at, VuBitmapImpl& src, const VuRect& srcRect) {
  if (const PixelBuffer* const pixels = FindSource(*resolver_, src).pixels) {
    Touch(CopyRect(pixels_, at, *pixels, srcRect));
    return true;
  }
  const CopyPlan plan = PlanCopy(at.x, at.y, pixels_.Bounds(), srcRect, ToBox(src.GetBounds()));
  const Box& to = plan.box;
  std::optional<PixelBuffer> copy;
  const Box part = {plan.srcX, plan.srcY, plan.srcX + to.Width(), plan.srcY + to.Height()};
  if (!resolver_->CopyToBuffer(src, part, copy)) return false;
  if (copy) Touch(CopyRect(pixels_, {to.x0, to.y0}, *copy, ToRect(copy->Bounds())));
  return true;
}

bool SoftwareRenderer::Unlock(bool written) {
  if (!written) return true;
  pixels_.RestoreOpaqueBits(pixels_.Bounds());
  Touch(pixels_.Bounds());
  return true;
}

inline bool SoftwareRenderer::DrawGlyph(const TextLayout::Glyph& glyph,
                                        const LineStyle<Pixels>& style) {
  const PixelBuffer* const atlas = FindSource(*resolver_, *glyph.atlas).pixels;
  if (!atlas) return false;
  if (!style.move) {
    DrawObject(ToRectD(glyph.destination), {atlas, VuScaleMode::Bilinear}, ToRectD(glyph.source),
               Edges::OnWholePixels, style.matrix, style.color, style.mask);
    return true;
  }
  const VuRect &from = glyph.source, &to = glyph.destination;
  const int64_t x = int64_t{to.x} + style.move->x, y = int64_t{to.y} + style.move->y;
  if (!IsInRange(x) || !IsInRange(y)) return true;
  Refresh();
  const int left = static_cast<int>(x), top = static_cast<int>(y);
  const Box box = Visible({left, top, left + to.width, top + to.height});
  if (box.IsEmpty()) return true;
  Touch(box);
  const int moveX = from.x - left, moveY = from.y - top;
  PixelSpan shading = {};
  shading.color = style.premultiplied;
  shading.coverage = atlas->Row(box.y0 + moveY) + box.x0 + moveX;
  shading.coveragePitch = atlas->Pitch();
  if (!Blending().DrawDirect(box, shading, false))
    DrawCoverageIndirect(box, *atlas, moveX, moveY, style.premultiplied);
  return true;
}

template class TextDrawing<SoftwareRenderer, const PixelBuffer>;

}  // namespace ZIRK::backends
