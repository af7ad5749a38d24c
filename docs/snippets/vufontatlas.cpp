#include <zirk/zirk.h>

using namespace ZIRK;

void Place(const Glyph& glyph, int64_t x);

void LayOut(const VuFontAtlas& font, const char* text) {
  //! [snippet]
  TextCursor cursor(text);
  while (const Glyph* glyph = font.NextGlyph(cursor, true)) {
    Place(*glyph, cursor.pen + glyph->left);
  }
  //! [snippet]
}
