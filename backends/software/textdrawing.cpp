#include "software/textdrawing.h"

#include <cstdint>

#include "geometry/pixelmath.h"
#include "text/atlasline.h"

namespace ZIRK::backends {

namespace {

/// The glyphs of a line, with the pixels of their atlas.
struct Glyphs : TextLayout::Glyph {
  Glyphs(PixelSources& from, const TextArguments& text)
      : line(from.Atlases(), text), sources(from) {}

  bool Next() {
    if (!line.Next(*this)) return false;
    pixels = FindSource(sources, *atlas).pixels;
    return pixels != nullptr;
  }

  AtlasLine line;
  PixelSources& sources;
  const PixelBuffer* pixels = nullptr;
};

bool IsNear(int64_t position) {
  constexpr auto kLimit = static_cast<int64_t>(kFar);
  return position >= -kLimit && position <= kLimit;
}

void DrawUpright(Painter& painter, Glyphs& glyph, VuColor color, VuPoint move) {
  const uint32_t shade = Premultiply(color);
  while (glyph.Next()) {
    const VuRect& to = glyph.destination;
    const int64_t x = int64_t{to.x} + move.x, y = int64_t{to.y} + move.y;
    if (!IsNear(x) || !IsNear(y)) continue;
    const int left = static_cast<int>(x), top = static_cast<int>(y);
    painter.DrawCoverage({left, top, left + to.width, top + to.height}, *glyph.pixels,
                         glyph.source.x, glyph.source.y, shade);
  }
}

void DrawTransformed(Painter& painter, Glyphs& glyph, VuColor color, const MatrixF& m,
                     const Painter::Mask* mask) {
  std::optional<Painter::Mask> over;
  std::optional<Placement> box;
  if (mask) {
    box = glyph.line.Place(m);
    if (!box) return;
    over = *mask;
    over->primitive = &*box;
  }
  while (glyph.Next())
    painter.DrawObject(ToExtent(glyph.destination), {glyph.pixels, VuScaleMode::Bilinear},
                       ToExtent(glyph.source), Edges::OnWholePixels, m, color,
                       over ? &*over : nullptr);
}

}  // namespace

void DrawText(Painter& painter, PixelSources& sources, const TextArguments& text, VuColor color,
              const MatrixF& m, const Painter::Mask* mask) {
  Glyphs glyphs(sources, text);
  if (!glyphs.line) return;
  const std::optional<VuPoint> move = mask ? std::nullopt : WholePixelMove(m);
  if (move) return DrawUpright(painter, glyphs, color, *move);
  DrawTransformed(painter, glyphs, color, m, mask);
}

}  // namespace ZIRK::backends
