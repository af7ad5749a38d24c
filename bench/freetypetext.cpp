#include <benchmark/benchmark.h>

#include "freetypeface.h"

#include FT_GLYPH_H

namespace ZIRK::bench {

namespace {

class FreeTypeText final : public TextPeer {
 public:
  const char* Name() const override { return "FreeType"; }

  double Measure(const TextLines& lines) override {
    double sum = 0;
    FT_Face const face = face_.Get();
    for (const TextLine& line : lines) {
      FT_UInt previous = 0;
      for (const char c : line.text) {
        const FT_UInt index = FT_Get_Char_Index(face, static_cast<FT_ULong>(c));
        FT_Load_Glyph(face, index, FT_LOAD_DEFAULT);
        if (previous) sum += face_.Kerning(previous, index);
        sum += static_cast<double>(face->glyph->advance.x >> 6);
        previous = index;
      }
    }
    return sum;
  }

  bool Open() override {
    const FreeTypeFace opened;
    static const std::string characters = OpenedCharacters();
    FT_Face const face = opened.Get();
    FT_Glyph kept[kOpenedGlyphs];
    FT_UInt previous = 0;
    int width = 0;
    for (int i = 0; i < kOpenedGlyphs; ++i) {
      const FT_UInt index = FT_Get_Char_Index(face, static_cast<FT_ULong>(characters[size_t(i)]));
      FT_Load_Glyph(face, index, FT_LOAD_RENDER);
      FT_Get_Glyph(face->glyph, &kept[i]);
      if (previous) width += opened.Kerning(previous, index);
      previous = index;
    }
    benchmark::DoNotOptimize(width);
    for (FT_Glyph glyph : kept) FT_Done_Glyph(glyph);
    return true;
  }

 private:
  FreeTypeFace face_;
};

}  // namespace

std::unique_ptr<TextPeer> MakeFreeTypeText() {
  return std::make_unique<FreeTypeText>();
}

}  // namespace ZIRK::bench
