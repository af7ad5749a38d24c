#include <fontconfig/fontconfig.h>
#include <pango/pangofc-fontmap.h>
#include <pango/pangoft2.h>

#include <stdexcept>

#include "textpeer.h"

namespace ZIRK::bench {

namespace {

class PangoText final : public TextPeer {
 public:
  PangoText() {
    FcConfig* const fonts = FcConfigCreate();
    const std::string file = TextFont();
    const bool isThere =
        FcConfigAppFontAddFile(fonts, reinterpret_cast<const FcChar8*>(file.c_str()));
    pango_fc_font_map_set_config(PANGO_FC_FONT_MAP(map_), fonts);
    FcConfigDestroy(fonts);
    if (!isThere) throw std::runtime_error("Pango: " + file);
    PangoFontDescription* const font = pango_font_description_from_string("ZIRK Test Sans");
    pango_font_description_set_absolute_size(font, double{kTextSize} * PANGO_SCALE);
    pango_layout_set_font_description(layout_, font);
    pango_font_description_free(font);
  }
  ~PangoText() override {
    g_object_unref(layout_);
    g_object_unref(context_);
    g_object_unref(map_);
  }

  const char* Name() const override { return "Pango"; }

  int Wrap(const std::string& paragraph, int width) override {
    pango_layout_set_width(layout_, width * PANGO_SCALE);
    pango_layout_set_text(layout_, paragraph.data(), static_cast<int>(paragraph.size()));
    return pango_layout_get_line_count(layout_);
  }

 private:
  PangoFontMap* const map_ = pango_ft2_font_map_new();
  PangoContext* const context_ = pango_font_map_create_context(map_);
  PangoLayout* const layout_ = pango_layout_new(context_);
};

}  // namespace

std::unique_ptr<TextPeer> MakePangoText() {
  return std::make_unique<PangoText>();
}

}  // namespace ZIRK::bench
