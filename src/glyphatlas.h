#pragma once

#include <zirk/maxrectsbinpack.h>
#include <zirk/vufontatlas.h>
#include <zirk/vutextureatlasimpl.h>

#include <memory>
#include <string>

#include "glyphimage.h"
#include "glyphtables.h"
#include "texturelimit.h"

namespace ZIRK {

/// Manages the bitmaps of a font's glyphs in its texture atlas, which exists once a backend has
/// requested it. All calls are under the font's glyph mutex.
class GlyphAtlas {
 public:
  /// The longest side of a bitmap that has room in an atlas.
  static constexpr int kLargestBitmap = kMaxTextureSide - VuFontAtlas::margin_;

  /// `glyphs` are those of the font.
  explicit GlyphAtlas(GlyphTable& glyphs) : glyphs_(glyphs) {}
  GlyphAtlas(const GlyphAtlas&) = delete;
  GlyphAtlas& operator=(const GlyphAtlas&) = delete;

  /// Empty before Open().
  const std::shared_ptr<VuTextureAtlasImpl>& Texture() const { return texture_; }
  /// Creates the texture, high enough for the tallest glyph, and names it.
  void Open(VuGraphicsImpl* graphics, const std::string& name);
  /// Releases the texture and forgets the glyphs' heights.
  void Close();

  /// The atlas grows by the height of the tallest glyph that the font has loaded.
  void CountHeight(int height);
  /// Copies the image of `glyph` to a free region of the texture, which exists. If no region is
  /// free, logs that and leaves the glyph out.
  void Place(CachedGlyph& cached, GlyphImage& image);
  /// Whether the glyph was left out of the atlas because the atlas was full, and it still is.
  bool HasNoRoomFor(const CachedGlyph& cached) const { return cached.leftOutOf == filling_; }
  /// A bitmap of the image alone, for a glyph that was left out. Null after an error line.
  std::shared_ptr<VuBitmapImpl> PlaceApart(GlyphImage& image);
  /// Whether it is cheaper to empty a full atlas than to keep it. The atlas is emptied, unless most
  /// of its glyphs had to be placed again since it was emptied last. In that case glyphs without
  /// room are placed apart, until that has happened as often as the atlas holds glyphs: emptying it
  /// would by then have cost no more.
  bool PaysToEmpty() const { return returned_ * 2 < placed_ || apart_ >= placed_; }
  /// Marks all glyphs as not in the atlas and empties the atlas.
  void Reset();

 private:
  static constexpr int kSide = kMaxTextureSide;
  static constexpr int kMargin = VuFontAtlas::margin_;

  BinRect Allocate(int width, int height, uint32_t index);
  void Grow();

  GlyphTable& glyphs_;
  std::shared_ptr<VuTextureAtlasImpl> texture_;
  int tallest_ = 0;
  uint32_t filling_ = 1;
  // Since the atlas was emptied.
  int placed_ = 0;
  int returned_ = 0;  ///< Those among them that had been placed before.
  int apart_ = 0;     ///< How often a glyph was placed apart.
};

}  // namespace ZIRK
