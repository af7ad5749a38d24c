#pragma once

#include <zirk/glyph.h>
#include <zirk/vufontatlas.h>
#include <zirk/vupoint.h>
#include <zirk/vurect.h>
#include <zirk/vutextureatlasimpl.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>

#include "surface/operands.h"

namespace ZIRK {
class VuBitmapImpl;
class VuGraphicsImpl;
}  // namespace ZIRK

namespace ZIRK::backends {

/// The layout of one line of text: the part of the font's atlas and the destination of each glyph,
/// in the coordinates of the text.
///
/// Draw each glyph before you request the next one, which may move the atlas to another bitmap or
/// empty it. A glyph that does not fit into a full atlas has a separate bitmap. Only one thread at
/// a time may draw from an atlas; hold its lock for a whole line.
class TextLayout {
 public:
  struct Glyph {
    VuBitmapImpl* atlas;  ///< Or a bitmap with this glyph only.
    VuRect source;        ///< In the atlas.
    VuRect destination;   ///< Of the same size.
  };

  /// `graphics` makes the font's atlas if it has none. May throw std::bad_alloc.
  TextLayout(const TextArguments& arguments, VuGraphicsImpl* graphics);

  /// Returns the object that made the font's atlas, or null if there is nothing to draw. If the
  /// atlas has no bitmap, that object may already be deleted.
  VuGraphicsImpl* Owner() const;

  /// Returns the line's rectangle, as wide as its measured width.
  VuRect Box() const;

  /// Stores the next glyph that has pixels to draw. Returns false at the end. Expects that Owner()
  /// is not null. May throw std::bad_alloc.
  bool Next(Glyph& placed) {
    while (const ZIRK::Glyph* const glyph = font_->NextGlyph(cursor_, true))
      if (Place(*glyph, placed)) return true;
    return false;
  }

 private:
  bool Place(const ZIRK::Glyph& glyph, Glyph& placed) {
    if (glyph.width <= 0 || glyph.height <= 0) return false;
    const int64_t x = pos_.x + cursor_.pen + glyph.left, y = int64_t{pos_.y} + glyph.top;
    if (!Fits(x, glyph.width) || !Fits(y, glyph.height)) return false;
    if (!glyph.inAtlas) apart_ = font_->PlaceLeftOut(glyph);
    if (glyph.inAtlas) {
      placed.atlas = atlas_->GetBitmap().get();
      placed.source = {glyph.x, glyph.y, glyph.width, glyph.height};
    } else {
      if (!apart_) return false;
      placed.atlas = apart_.get();
      placed.source = {0, 0, glyph.width, glyph.height};
    }
    placed.destination = {static_cast<int32_t>(x), static_cast<int32_t>(y), glyph.width,
                          glyph.height};
    return !clip_ || CutToClip(placed);
  }
  /// Returns whether both ends of the extent are in the range of coordinates.
  static bool Fits(int64_t start, int extent) {
    return start >= std::numeric_limits<int32_t>::min() &&
           start + extent <= std::numeric_limits<int32_t>::max();
  }
  bool CutToClip(Glyph& glyph) const;

  const VuFontAtlas* font_;
  std::shared_ptr<VuTextureAtlasImpl> atlas_;
  std::shared_ptr<VuBitmapImpl> apart_;  ///< The latest glyph that did not fit into the atlas.
  TextCursor cursor_;
  const VuPoint pos_;
  std::optional<VuRect> clip_;
};

}  // namespace ZIRK::backends
