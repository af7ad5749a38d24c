#include <zirk/vufontatlas.h>

#include <memory>
#include <string>

#include "gallery/scenes.h"

namespace ZIRK::gallery {

namespace {

struct Font : VuFont {
  Font(const std::string& name, int size, bool bold = false)
      : VuFont(new VuFontAtlas((ZIRK_GALLERY_FONTS "/" + name).c_str(), 0, size, bold, false)) {}
};

constexpr VuColor kRed{0xFFE04030}, kGreen{0xFF30C060}, kYellow{0xFFF0D040};

void Text(VuGraphics&, VuBitmap& t) {
  Font small("sans.ttf", 9), sans("sans.ttf", 14), bold("sans.ttf", 28, true);
  t.DrawText(small, "AVATAR To. LT, Würgen", VuPoint{4, 0}, white);
  t.DrawText(sans, "AVATAR To. LT, Würgen", VuPoint{4, 12}, white);
  t.DrawText(sans, "Ξεσκεπάζω Съешь же", VuPoint{4, 28}, kYellow);
  t.DrawText(sans, "Tea 日本 ☃.", VuPoint{4, 44}, kGreen);
  sans.SetFallbackGlyph('?');
  const Font cjk("cjk.ttf", 16);
  sans.SetFallbackFont(&cjk);
  t.DrawText(sans, "Tea 日本語 あア 안 ☃.", VuPoint{4, 60}, kGreen);
  t.DrawText(bold, "Made bold", VuPoint{4, 74}, kRed);
  // Outline and filled glyph at one position: neither may stick out on one side.
  Font outlined("sans.ttf", 26);
  for (int i = 0; i < 6; ++i) {
    const VuPoint at{2 + i * 32, 108};
    outlined.SetOutlineType(VuFont::OutlineType(1 + i % 3));
    outlined.SetOutlineThickness(i < 3 ? 1.0f : 3.0f);
    t.DrawText(outlined, "R", at, kYellow);
    outlined.SetOutlineType(VuFont::OutlineType::None);
    t.DrawText(outlined, "R", at, VuColor{0xC0E04030});
  }
}

void TextCombined(VuGraphics& g, VuBitmap& t) {
  const Font sans("sans.ttf", 18);
  const std::unique_ptr<VuBitmap> mask(g.CreateBitmap(4, 2, VuPixelFormat::A8));
  mask->DrawRect(VuRect{0, 0, 2, 1}, white);
  mask->DrawRect(VuRect{2, 1, 2, 1}, white);
  mask->SetScaleMode(VuScaleMode::Bilinear);
  t.SetBlendingFunc(VuBlendingFactor::One, VuBlendingFactor::One);
  t.DrawText(sans, "Light", VuPoint{4, 0}, VuColor{0xFF804020});
  t.SetBlendingFunc(VuBlendingFactor::One, VuBlendingFactor::OneMinusSrcAlpha);
  t.SetClippingRect(VuRect{60, 6, 100, 10});
  t.DrawText(sans, "clipped, glass", VuPoint{56, 0}, VuColor{0x80FFFFFF});
  t.SetClippingRect(VuRect{0, 0, kWidth, kHeight});
  t.DrawText(sans, "a mask in four parts", VuPoint{4, 24}, kYellow, VuTransform(), *mask, nullptr,
             VuRect{0, 0, 0, 0});
  t.DrawText(sans, "turned, masked", VuPoint{4, 46}, white, VuTransform(6, 58, 1, 1, 20), *mask,
             nullptr, VuRect{0, 50, 500, 11});
  t.DrawText(sans, "Wide", VuPoint{0, 0}, kRed, VuTransform(76, 100, 2.3f, 1.4f, 0));
  t.DrawText(sans, "Mirror", VuPoint{0, 0}, kGreen, VuTransform(64, 122, -1, 1, 0));
}

}  // namespace

std::vector<Scene> TextScenes() {
  return {{"text", Text}, {"text_combined", TextCombined}};
}

}  // namespace ZIRK::gallery
