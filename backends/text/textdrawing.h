#pragma once

#include <memory>
#include <mutex>
#include <new>
#include <optional>

#include "geometry/mapping.h"
#include "geometry/pixelmath.h"
#include "surface/drawmemory.h"
#include "surface/operands.h"
#include "text/glyphatlasallocator.h"
#include "text/textlayout.h"

namespace ZIRK::backends {

/// The properties that all glyphs of a line share.
template <class Pixels>
struct LineStyle {
  VuColor color;
  uint32_t premultiplied;  ///< `color`, premultiplied.
  const MatrixF& matrix;
  const Mask<Pixels>* mask;     ///< Covers the whole line. Null for no mask.
  std::optional<VuPoint> move;  ///< Set without a mask if the matrix moves by whole pixels.
};

/// The operation DrawText of a renderer, which derives from this class and has
///
/// - `GlyphAtlasAllocator& Atlases()`, which makes the atlas of a font that has none;
/// - `bool DrawGlyph(const TextLayout::Glyph&, const LineStyle<Pixels>&)`, which draws before it
///   returns, or keeps the pixels that it needs: the next glyph may move the atlas to another
///   bitmap, empty it, or delete a bitmap that holds a single glyph. If it returns false, the rest
///   of the line is not drawn.
template <class Renderer, class Pixels>
class TextDrawing {
 public:
  /// Draws a line of text. Only one thread at a time draws from an atlas. If another plug-in made
  /// the font's atlas, logs an error and draws nothing.
  void DrawText(const TextArguments& text, VuColor color, const MatrixF& m,
                const Mask<Pixels>* mask);
};

template <class Renderer, class Pixels>
void TextDrawing<Renderer, Pixels>::DrawText(const TextArguments& text, VuColor color,
                                             const MatrixF& m, const Mask<Pixels>* mask) {
  auto& renderer = static_cast<Renderer&>(*this);
  // The font and its atlas may throw.
  try {
    TextLayout layout(text, &renderer.Atlases());
    if (!layout.Owner()) return;
    const auto owner = renderer.Atlases().FindOwner(layout.Owner());
    if (!owner) return;
    const std::lock_guard lock(owner->DrawingMutex());

    LineStyle<Pixels> style = {color, Premultiply(color), m, nullptr, std::nullopt};
    std::optional<MappedQuad> line;
    Mask<Pixels> overLine{};
    if (mask) {
      line = MapRect(ToRectD(layout.Box()), m, Edges::OnWholePixels);
      if (!line) return;
      overLine = {mask->source, mask->coords, &*line};
      style.mask = &overLine;
    } else {
      style.move = WholePixelMove(m);
    }
    TextLayout::Glyph glyph;
    while (layout.Next(glyph) && renderer.DrawGlyph(glyph, style)) continue;
  } catch (const std::bad_alloc&) {
    ReportNoMemory();
  }
}

}  // namespace ZIRK::backends
