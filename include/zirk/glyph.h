#pragma once

#include <cstdint>

/// FreeType's own name for a face, so that this header does without FreeType's.
typedef struct FT_FaceRec_* FT_Face;

namespace ZIRK {

/// One glyph of a font: its metrics in pixels, and where its bitmap lies in the font's atlas.
///
/// Owned by the font, which hands out pointers that stay valid until its fallback font changes or
/// it is deleted. What identifies a glyph never changes once it is handed out. Nor does its
/// advance, save that of a glyph that failed to load: it is 0, and changes once if the glyph loads
/// later. The rest changes when the glyph is rendered or placed anew (see VuFontAtlas).
struct Glyph {
  FT_Face face;              ///< The font's main face, or its fallback face.
  uint32_t charcode;         ///< The code point that was asked for first.
  uint32_t index;            ///< In `face`; 0 is its shape for what is missing.
  int32_t left;              ///< From the pen position to the bitmap's first column.
  int32_t x;                 ///< Column of the bitmap in the atlas.
  int32_t y;                 ///< Row of the bitmap in the atlas.
  int32_t width;             ///< Of the bitmap.
  int32_t advance;           ///< Of the pen, in whole pixels.
  int32_t height;            ///< Of the bitmap.
  int32_t top;               ///< From the top of the line down to the bitmap's first row.
  int32_t outlineType;       ///< A VuFont::OutlineType.
  int32_t outlineThickness;  ///< Radius of the stroke in 1/64 pixel.

  /// Texture coordinates, v = 1 being the atlas's first row. They are fractions of the atlas's size
  /// at the time when the glyph was placed, and are not touched when it grows: with `x`, `y`,
  /// `width` and `height`, which always hold, and its present size a backend does without them.
  float u0;
  float v0;
  float u1;
  float v1;

  bool inAtlas;  ///< Whether there is a bitmap in the atlas. If not, there is nothing to draw.
};

}  // namespace ZIRK
