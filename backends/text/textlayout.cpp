#include "text/textlayout.h"

#include <zirk/impl/log.h>
#include <zirk/impl/vubitmapimpl.h>

#include <algorithm>
#include <cstdint>

namespace ZIRK::backends {

namespace {

const VuFontAtlas* ToAtlasFont(const VuFontImpl* font) {
  const auto* const atlasFont = dynamic_cast<const VuFontAtlas*>(font);
  if (!atlasFont) ZIRK_LOG_DEBUG("DrawText: the font has no glyph atlas, nothing is drawn");
  return atlasFont;
}

bool IsZero(const VuRect& r) {
  return r.x == 0 && r.y == 0 && r.width == 0 && r.height == 0;
}

/// Clips a glyph in one direction.
void Cut(int32_t& source, int32_t& start, int32_t& extent, int32_t clipStart, int32_t clipExtent) {
  const int64_t first = std::max<int64_t>(start, clipStart);
  const int64_t end = std::min(int64_t{start} + extent, int64_t{clipStart} + clipExtent);
  if (first >= end) {
    extent = 0;
    return;
  }
  source += static_cast<int32_t>(first - start);
  start = static_cast<int32_t>(first);
  extent = static_cast<int32_t>(end - first);
}

}  // namespace

TextLayout::TextLayout(const TextArguments& a, VuGraphicsImpl* graphics)
    : font_(ToAtlasFont(a.font)), cursor_(a.text), pos_(a.pos) {
  if (!IsZero(a.rect)) clip_ = a.rect;
  const bool clippedAway = clip_ && (a.rect.width <= 0 || a.rect.height <= 0);
  if (font_ && a.text && *a.text && !clippedAway) atlas_ = font_->GetAtlas(graphics);
}

VuGraphicsImpl* TextLayout::Owner() const {
  return atlas_ ? atlas_->GetGraphics() : nullptr;
}

VuRect TextLayout::Box() const {
  return {pos_.x, pos_.y, font_->GetOneLineWidth(cursor_.text), font_->GetOneLineHeight()};
}

/// Returns false if nothing is left.
bool TextLayout::CutToClip(Glyph& glyph) const {
  VuRect &to = glyph.destination, &from = glyph.source;
  Cut(from.x, to.x, to.width, clip_->x, clip_->width);
  Cut(from.y, to.y, to.height, clip_->y, clip_->height);
  from.width = to.width;
  from.height = to.height;
  return to.width > 0 && to.height > 0;
}

}  // namespace ZIRK::backends
