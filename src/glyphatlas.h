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

/// Where the bitmaps of a font's glyphs lie: its texture atlas, once a backend has asked for that.
/// All calls are under the font's first mutex.
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
  /// Makes the texture, high enough for the tallest glyph, and names it.
  void Open(VuGraphicsImpl* graphics, const std::string& name);
  /// Gives the texture up and forgets the glyphs' heights.
  void Close();

  /// The atlas grows by the height of the tallest glyph that the font has loaded.
  void CountHeight(int height);
  /// Copies the image of `glyph` to a free region of the texture, which there is. Where no region
  /// is free, a line says so and the glyph is left out.
  void Place(CachedGlyph& cached, GlyphImage& image);
  /// Whether the glyph was left out of the atlas because that is full, as it still is.
  bool HasNoRoomFor(const CachedGlyph& cached) const { return cached.leftOutOf == filling_; }
  /// A bitmap of the image alone, for a glyph that was left out. Null after an error line.
  std::shared_ptr<VuBitmapImpl> PlaceApart(GlyphImage& image);
  /// Whether a full atlas is better emptied than kept. What it holds is taken to be out of use,
  /// unless most of that had come back after the atlas was emptied before. Then what has no room is
  /// placed apart, until that has been done as often as the atlas holds glyphs: by then emptying it
  /// would have cost no more.
  bool PaysToEmpty() const { return returned_ * 2 < placed_ || apart_ >= placed_; }
  /// Marks all glyphs as not in the atlas and empties that.
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
  int returned_ = 0;  ///< Of these the ones that had been placed before.
  int apart_ = 0;     ///< How often a glyph was placed apart.
};

}  // namespace ZIRK
