#include "software/textdrawing.h"

#include <cstdint>

#include "common/pixelmath.h"
#include "software/softwarebitmap.h"

namespace ZIRK::backends {

namespace {

Extent ToExtent(const VuRect& r) {
  return {double(r.x), double(r.y), double(r.width), double(r.height)};
}

const PixelBuffer& PixelsOf(const TextLayout::Glyph& glyph) {
  return static_cast<const SoftwareBitmap*>(glyph.atlas)->Pixels();
}

bool IsNear(int64_t position) {
  constexpr auto kLimit = static_cast<int64_t>(kFar);
  return position >= -kLimit && position <= kLimit;
}

void DrawUpright(Painter& painter, TextLayout& line, VuColor color, VuPoint move) {
  const uint32_t shade = Premultiply(color);
  for (TextLayout::Glyph glyph; line.Next(glyph);) {
    const VuRect& to = glyph.destination;
    const int64_t x = int64_t{to.x} + move.x, y = int64_t{to.y} + move.y;
    if (!IsNear(x) || !IsNear(y)) continue;
    const int left = static_cast<int>(x), top = static_cast<int>(y);
    painter.DrawCoverage({left, top, left + to.width, top + to.height}, PixelsOf(glyph),
                         glyph.source.x, glyph.source.y, shade);
  }
}

void DrawTransformed(Painter& painter, TextLayout& line, VuColor color, const Painter::MatrixF& m,
                     Painter::OptionalMask mask) {
  std::optional<Placement> box;
  if (mask) {
    box = Place(ToExtent(line.Box()), m, Edges::OnWholePixels);
    if (!box) return;
    mask->primitive = &*box;
  }
  for (TextLayout::Glyph glyph; line.Next(glyph);)
    painter.DrawObject(ToExtent(glyph.destination), {&PixelsOf(glyph), VuScaleMode::Bilinear},
                       ToExtent(glyph.source), Edges::OnWholePixels, m, color, mask);
}

}  // namespace

void DrawText(Painter& painter, AtlasGraphics& atlases, TextLayout& line, VuColor color,
              const Painter::MatrixF& m, const Painter::OptionalMask& mask) {
  if (!line.Owner()) return;
  const std::shared_ptr<AtlasGraphics> owner = atlases.FindOwner(line.Owner());
  if (!owner) return;
  const std::lock_guard lock(owner->DrawingMutex());
  const std::optional<VuPoint> move = mask ? std::nullopt : WholePixelMove(m);
  if (move) return DrawUpright(painter, line, color, *move);
  DrawTransformed(painter, line, color, m, mask);
}

}  // namespace ZIRK::backends
