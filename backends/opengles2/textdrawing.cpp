#include "opengles2/textdrawing.h"

#include "opengles2/glsurface.h"

namespace ZIRK::backends {

namespace {

Extent ToExtent(const VuRect& r) {
  return {double(r.x), double(r.y), double(r.width), double(r.height)};
}

/// The atlas's texture; null if it is of a context that was lost.
GlTexture* TextureOf(const TextLayout::Glyph& glyph, const GlCanvas& canvas) {
  const GlCanvas& atlas = static_cast<const GlBitmap*>(glyph.atlas)->Canvas();
  return &atlas.Device() == &canvas.Device() ? atlas.Texture() : nullptr;
}

}  // namespace

std::unique_ptr<VuBitmapImpl> GlAtlases::MakeBitmap(Entry entry, int width, int height,
                                                    VuPixelFormat format) {
  auto texture = GlTexture::Create(device_, width, height, format);
  if (!texture) return nullptr;
  auto bitmap = std::make_unique<GlBitmap>(std::move(entry), device_, width, height, format,
                                           shared_from_this());
  bitmap->Canvas().DrawOn(std::move(texture));
  return bitmap;
}

void DrawText(GlCanvas& canvas, AtlasGraphics& atlases, TextLayout& line, VuColor color,
              const GlCanvas::MatrixF& m, const GlMask* mask) {
  if (!line.Owner()) return;
  const std::shared_ptr<AtlasGraphics> owner = atlases.FindOwner(line.Owner());
  if (!owner) return;
  const std::lock_guard lock(owner->DrawingMutex());
  std::optional<Placement> box;
  GlMask masked{};
  if (mask) {
    masked = *mask;
    box = Place(ToExtent(line.Box()), m, Edges::OnWholePixels);
    if (!box) return;
    masked.primitive = &*box;
  }
  for (TextLayout::Glyph glyph; line.Next(glyph);) {
    GlTexture* const texture = TextureOf(glyph, canvas);
    if (!texture) continue;
    const GlOperand operand = {texture, VuScaleMode::Bilinear};
    if (!mask && canvas.BlitBox(glyph.destination, operand, glyph.source, m, color)) continue;
    canvas.DrawObject(ToExtent(glyph.destination), operand, ToExtent(glyph.source),
                      Edges::OnWholePixels, m, color, mask ? &masked : nullptr);
  }
}

}  // namespace ZIRK::backends
