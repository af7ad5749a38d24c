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

/// Lays out one line of text: which parts of the font's atlas go where, in the text's own
/// coordinates.
///
/// The caller draws a glyph before it requests the next one, which may move the atlas to another
/// bitmap, or empty it. A glyph without room in a full atlas has a bitmap of its own. Threads that
/// draw from one atlas take turns, a line at a time.
class TextLayout {
 public:
  struct Glyph {
    VuBitmapImpl* atlas;  ///< Or a bitmap of this glyph alone.
    VuRect source;        ///< In the atlas.
    VuRect destination;   ///< Of the same size.
  };

  /// `graphics` makes the font's atlas if it has none yet. May throw std::bad_alloc.
  TextLayout(const TextArguments& arguments, VuGraphicsImpl* graphics);

  /// The maker of the font's atlas; null if there is nothing to draw. If the atlas has no bitmap,
  /// the maker may be deleted already.
  VuGraphicsImpl* Owner() const;

  /// The line, as wide as it is measured.
  VuRect Box() const;

  /// Stores the next glyph that has pixels to draw; false at the end. Do not call it if Owner() is
  /// null. May throw std::bad_alloc.
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
  /// Whether the extent's end is in the range of coordinates too.
  static bool Fits(int64_t start, int extent) {
    return start >= std::numeric_limits<int32_t>::min() &&
           start + extent <= std::numeric_limits<int32_t>::max();
  }
  bool CutToClip(Glyph& glyph) const;

  const VuFontAtlas* font_;
  std::shared_ptr<VuTextureAtlasImpl> atlas_;
  std::shared_ptr<VuBitmapImpl>
      apart_;  ///< The latest glyph alone for which the atlas had no room.
  TextCursor cursor_;
  const VuPoint pos_;
  std::optional<VuRect> clip_;
};

}  // namespace ZIRK::backends
