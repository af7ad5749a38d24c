#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H

#include <stdexcept>

#include "textpeer.h"

namespace ZIRK::bench {

/// The font as FreeType opens it.
class FreeTypeFace {
 public:
  FreeTypeFace() {
    if (FT_Init_FreeType(&library_) || FT_New_Face(library_, TextFont().c_str(), 0, &face_) ||
        FT_Set_Pixel_Sizes(face_, 0, kTextSize))
      throw std::runtime_error("FreeType does not open " + TextFont());
  }
  ~FreeTypeFace() {
    FT_Done_Face(face_);
    FT_Done_FreeType(library_);
  }
  FreeTypeFace(const FreeTypeFace&) = delete;
  FreeTypeFace& operator=(const FreeTypeFace&) = delete;

  FT_Face Get() const { return face_; }

  /// Pixels of kerning between two glyphs.
  int Kerning(FT_UInt left, FT_UInt right) const {
    FT_Vector kerning;
    FT_Get_Kerning(face_, left, right, FT_KERNING_DEFAULT, &kerning);
    return static_cast<int>(kerning.x >> 6);
  }

 private:
  FT_Library library_ = nullptr;
  FT_Face face_ = nullptr;
};

}  // namespace ZIRK::bench
