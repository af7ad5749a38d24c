#include <cairo-ft.h>
#include <cairo.h>

#include "freetypeface.h"
#include "peer.h"

namespace ZIRK::bench {

namespace {

class CairoText final : public TextPeer {
 public:
  CairoText() {
    cairo_paint(cr_);
    cairo_set_font_face(cr_, font_);
    cairo_set_font_size(cr_, kTextSize);
    cairo_set_source_rgb(cr_, 0x33 / 255.0, 0x66 / 255.0, 0x99 / 255.0);
    cairo_font_extents_t extents;
    cairo_font_extents(cr_, &extents);
    for (const TextLine& line : MakeTextLines()) Prepare(line, extents.ascent);
  }
  ~CairoText() override {
    for (const Glyphs& line : prepared_) cairo_glyph_free(line.first);
    cairo_font_face_destroy(font_);
    cairo_destroy(cr_);
    cairo_surface_destroy(surface_);
  }

  const char* Name() const override { return "Cairo"; }

  double Measure(const TextLines& lines) override {
    double sum = 0;
    for (const TextLine& line : lines) {
      cairo_text_extents_t extents;
      cairo_text_extents(cr_, line.text.c_str(), &extents);
      sum += extents.x_advance;
    }
    return sum;
  }

  bool Draw(const TextLines&) override {
    for (const Glyphs& line : prepared_) cairo_show_glyphs(cr_, line.first, line.second);
    cairo_surface_flush(surface_);
    return true;
  }

  bool Read(uint32_t* out) override {
    std::memcpy(out, cairo_image_surface_get_data(surface_), size_t{kWidth} * kHeight * 4);
    return true;
  }

 private:
  using Glyphs = std::pair<cairo_glyph_t*, int>;

  void Prepare(const TextLine& line, double ascent) {
    Glyphs glyphs = {nullptr, 0};
    cairo_scaled_font_text_to_glyphs(cairo_get_scaled_font(cr_), line.x, line.y + ascent,
                                     line.text.c_str(), -1, &glyphs.first, &glyphs.second, nullptr,
                                     nullptr, nullptr);
    prepared_.push_back(glyphs);
  }

  FreeTypeFace face_;
  cairo_surface_t* surface_ = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kWidth, kHeight);
  cairo_t* cr_ = cairo_create(surface_);
  cairo_font_face_t* font_ = cairo_ft_font_face_create_for_ft_face(face_.Get(), 0);
  std::vector<Glyphs> prepared_;
};

}  // namespace

std::unique_ptr<TextPeer> MakeCairoText() {
  return std::make_unique<CairoText>();
}

}  // namespace ZIRK::bench
