#pragma once

#include <gtest/gtest.h>
#include <zirk/vufont.h>

#include <ft2build.h>
#include FT_BITMAP_H
#include FT_FREETYPE_H
#include FT_STROKER_H

#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

namespace ZIRK::helpers {

/// A glyph as FreeType renders it; x and y are from the pen at the top of the line.
struct Letter {
  unsigned index;
  int x, y, width, height, advance;
  std::vector<uint8_t> coverage;

  auto Tied() const { return std::tie(x, y, width, height, advance, coverage); }
  bool operator==(const Letter& other) const { return Tied() == other.Tied(); }
};

/// FreeType, asked without the library.
struct FreeType {
  FT_Library library = nullptr;
  FT_Face face = nullptr;

  FreeType(const std::string& file, int size) {
    FT_Init_FreeType(&library);
    EXPECT_EQ(FT_New_Face(library, file.c_str(), 0, &face), 0);
    FT_Set_Pixel_Sizes(face, 0, static_cast<FT_UInt>(size));
  }
  ~FreeType() { FT_Done_FreeType(library); }
  int Ascender() const { return static_cast<int>(face->size->metrics.ascender >> 6); }

  Letter Render(unsigned index, VuFont::OutlineType type = {}, float thickness = 0,
                bool bold = false) const {
    using Type = VuFont::OutlineType;
    const bool filled = type == Type::None;
    EXPECT_EQ(FT_Load_Glyph(face, index, filled ? FT_LOAD_RENDER : FT_LOAD_NO_BITMAP), 0);
    FT_Glyph glyph;
    FT_Get_Glyph(face->glyph, &glyph);
    FT_Stroker stroker;
    FT_Stroker_New(library, &stroker);
    FT_Stroker_Set(stroker, int(thickness * 64), FT_STROKER_LINECAP_ROUND,
                   FT_STROKER_LINEJOIN_ROUND, 0);
    if (type == Type::Stroked) FT_Glyph_Stroke(&glyph, stroker, true);
    if (type == Type::Outer || type == Type::Inner)
      FT_Glyph_StrokeBorder(&glyph, stroker, type == Type::Inner, true);
    FT_Stroker_Done(stroker);
    FT_Glyph_To_Bitmap(&glyph, FT_RENDER_MODE_NORMAL, nullptr, true);
    const auto rendered = reinterpret_cast<FT_BitmapGlyph>(glyph);
    FT_Bitmap& map = rendered->bitmap;
    const FT_Pos strength = face->size->metrics.height / 50;
    if (bold) FT_Bitmap_Embolden(library, &map, strength, strength);
    const bool mono = map.pixel_mode == FT_PIXEL_MODE_MONO;
    Letter letter{index,
                  rendered->left,
                  Ascender() - rendered->top,
                  int(map.width),
                  int(map.rows),
                  int(face->glyph->advance.x >> 6),
                  {}};
    for (int i = 0; i < letter.width * letter.height; ++i) {
      const int x = i % letter.width;
      const unsigned char* const row = map.buffer + i / letter.width * map.pitch;
      letter.coverage.push_back(uint8_t(mono ? (row[x / 8] << x % 8 & 0x80 ? 255 : 0) : row[x]));
    }
    FT_Done_Glyph(glyph);
    return letter;
  }
};

}  // namespace ZIRK::helpers
