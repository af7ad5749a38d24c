#pragma once

#include <cstdint>

/// FreeType's handle of a face, declared here so that this header needs none of FreeType's.
using FT_Face = struct FT_FaceRec_*;

namespace ZIRK {

/// One glyph of a font: its metrics in pixels, and the place of its bitmap in the font's atlas.
///
/// The font owns its glyphs. Pointers to them are valid until the font's fallback font changes or
/// the font is deleted. The fields that identify a glyph never change, nor does its advance, with
/// one exception: a glyph that failed to load has advance 0, which changes if the glyph loads
/// later. All other fields change when the glyph is rendered or placed again (see VuFontAtlas).
struct Glyph {
  FT_Face face;              ///< The font's main face, or its fallback face.
  uint32_t charcode;         ///< The code point that was asked for first.
  uint32_t index;            ///< In `face`; 0 is the shape for missing glyphs.
  int32_t left;              ///< Pixels from the pen position to the bitmap's first column.
  int32_t x;                 ///< Column of the bitmap in the atlas.
  int32_t y;                 ///< Row of the bitmap in the atlas.
  int32_t width;             ///< Width of the bitmap.
  int32_t advance;           ///< Distance to the next pen position, without kerning.
  int32_t height;            ///< Height of the bitmap.
  int32_t top;               ///< Pixels from the top of the line to the bitmap's first row.
  int32_t outlineType;       ///< A VuFont::OutlineType.
  int32_t outlineThickness;  ///< Radius of the stroke in 1/64 pixel.

  // Texture coordinates are fractions of the atlas's size when the glyph was placed. They are not
  // updated when the atlas grows; `x`, `y`, `width` and `height` always hold.

  float u0;  ///< Left edge, as a fraction of the atlas's width when the glyph was placed.
  float v0;  ///< Top edge, where 1 is the atlas's first row and 0 the end of its last.
  float u1;  ///< Right edge, as `u0`.
  float v1;  ///< Bottom edge, as `v0`.

  bool inAtlas;  ///< Whether the atlas holds the bitmap. If not, there is nothing to draw.
};

}  // namespace ZIRK
