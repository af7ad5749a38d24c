#include <pixman.h>

#include <array>

#include "freetypeface.h"
#include "peer.h"

namespace ZIRK::bench {

namespace {

/// Where a line's glyphs stand is worked out beforehand, as Cairo's peer has it too.
class PixmanText final : public TextPeer {
 public:
  explicit PixmanText(pixman_format_code_t format) {
    pixman_color_t color = {0x3333, 0x6666, 0x9999, 0xFFFF};
    color_ = pixman_image_create_solid_fill(&color);
    target_ = pixman_image_create_bits(format, kWidth, kHeight, nullptr, 0);
    pixman_color_t black = {0, 0, 0, 0xFFFF};
    const pixman_box32_t all = {0, 0, kWidth, kHeight};
    pixman_image_fill_boxes(PIXMAN_OP_SRC, target_, &black, 1, &all);
    pixman_glyph_cache_freeze(cache_);
    for (const char c : OpenedCharacters()) CacheGlyph(static_cast<unsigned char>(c));
    pixman_glyph_cache_thaw(cache_);
    for (const TextLine& line : MakeTextLines()) prepared_.push_back(Prepare(line));
  }
  ~PixmanText() override {
    pixman_glyph_cache_destroy(cache_);
    pixman_image_unref(target_);
    pixman_image_unref(color_);
  }

  const char* Name() const override { return "Pixman"; }

  bool Draw(const TextLines&) override {
    pixman_glyph_cache_freeze(cache_);
    for (const std::vector<pixman_glyph_t>& glyphs : prepared_)
      pixman_composite_glyphs_no_mask(PIXMAN_OP_OVER, color_, target_, 0, 0, 0, 0, cache_,
                                      static_cast<int>(glyphs.size()), glyphs.data());
    pixman_glyph_cache_thaw(cache_);
    return true;
  }

  bool Read(uint32_t* out) override {
    std::memcpy(out, pixman_image_get_data(target_), size_t{kWidth} * kHeight * 4);
    return true;
  }

 private:
  struct Cached {
    const void* glyph;
    FT_UInt index;
    int advance;
  };

  void CacheGlyph(unsigned char c) {
    FT_Face const face = face_.Get();
    const FT_UInt index = FT_Get_Char_Index(face, c);
    FT_Load_Glyph(face, index, FT_LOAD_RENDER);
    const FT_GlyphSlot slot = face->glyph;
    const int width = static_cast<int>(slot->bitmap.width);
    const int height = static_cast<int>(slot->bitmap.rows);
    pixman_image_t* const image = pixman_image_create_bits(PIXMAN_a8, width, height, nullptr, 0);
    auto* const pixels = reinterpret_cast<uint8_t*>(pixman_image_get_data(image));
    for (int y = 0; y < height; ++y)
      std::memcpy(pixels + y * pixman_image_get_stride(image),
                  slot->bitmap.buffer + y * slot->bitmap.pitch, slot->bitmap.width);
    const uintptr_t key = size_t{c} + 1;
    glyphs_[c] = {pixman_glyph_cache_insert(cache_, this, reinterpret_cast<void*>(key),
                                            -slot->bitmap_left, slot->bitmap_top, image),
                  index, static_cast<int>(slot->advance.x >> 6)};
    pixman_image_unref(image);
  }

  std::vector<pixman_glyph_t> Prepare(const TextLine& line) const {
    std::vector<pixman_glyph_t> glyphs;
    int x = line.x;
    FT_UInt previous = 0;
    const int baseline = line.y + static_cast<int>(face_.Get()->size->metrics.ascender >> 6);
    for (const char c : line.text) {
      const Cached& cached = glyphs_[static_cast<unsigned char>(c)];
      if (previous) x += face_.Kerning(previous, cached.index);
      glyphs.push_back({x, baseline, cached.glyph});
      x += cached.advance;
      previous = cached.index;
    }
    return glyphs;
  }

  FreeTypeFace face_;
  pixman_image_t* color_;
  pixman_image_t* target_;
  pixman_glyph_cache_t* cache_ = pixman_glyph_cache_create();
  std::array<Cached, 128> glyphs_{};
  std::vector<std::vector<pixman_glyph_t>> prepared_;
};

}  // namespace

std::unique_ptr<TextPeer> MakePixmanText() {
  return std::make_unique<PixmanText>(PIXMAN_a8r8g8b8);
}

std::unique_ptr<TextPeer> MakePixmanTextOn565() {
  return std::make_unique<PixmanText>(PIXMAN_r5g6b5);
}

}  // namespace ZIRK::bench
