// freetype FONT
//
// Renders the characters of a page of text by FreeType alone, and prints how many KiB it took.

#include <ft2build.h>
#include FT_FREETYPE_H

#include <cstdio>

#include "memory/page.h"

int main(int argc, char** argv) {
  FT_Library library = nullptr;
  FT_Face face = nullptr;
  if (argc != 2 || FT_Init_FreeType(&library) || FT_New_Face(library, argv[1], 0, &face) ||
      FT_Set_Pixel_Sizes(face, 0, kPageTextSize))
    return 1;
  for (int line = 0; line < kPageLines; ++line) {
    for (const char character : PageLine(line)) {
      if (FT_Load_Char(face, static_cast<FT_ULong>(character), FT_LOAD_RENDER)) return 1;
    }
  }
  std::printf("%ld\n", PeakResidentKiB());
  return FT_Done_FreeType(library);
}
